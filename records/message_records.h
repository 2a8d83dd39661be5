#pragma once
// One IM message as the module keeps it, converted from the SDK's JSON.

#include <cstdint>
#include <vector>

#include "platform/strings.h"
#include "records/elem_records.h"

struct MessageStru {
  WString conv_id;
  uint32_t conv_type = 0;  // 1 one-to-one, 2 group
  WString sender;
  uint64_t server_time = 0;  // seconds
  bool is_from_self = false;
  uint32_t platform = 0;
  bool is_read = false;
  uint32_t status = 0;
  uint64_t unique_id = 0;  // the local store's key
  UserProfileBrief sender_profile;
  std::vector<ElemStru> elems;  // kept elements, in array order
  uint32_t dropped_custom_count = 0;
  uint32_t local_id = 0;  // set by the module for messages it sends or adds

  // Download bookkeeping of the receiving side (progress of the SDK's
  // element download); not read from the message JSON.
  int32_t downloaded = 0;
  uint64_t download_current_size = 0;
  uint64_t download_total_size = 0;
  uint32_t secondary_status = 0;
  bool operator==(const MessageStru&) const = default;
};

// A message locator as the SDK reports it. conv_id and conv_type are kept as
// booleans on purpose: neither is used as an identifier.
struct MessageLocator {
  bool conv_id = false;
  bool conv_type = false;
  bool is_revoked = false;
  uint64_t time = 0;
  uint64_t seq = 0;
  bool is_self = false;
  uint64_t rand = 0;
  uint64_t unique_id = 0;
  bool operator==(const MessageLocator&) const = default;
};

#pragma once

#include <cstdint>

#include "platform/strings.h"
#include "records/message_records.h"

// Conversation types as the SDK numbers them.
enum ConvType : uint32_t {
  kConvNone = 0,
  kConvC2C = 1,    // one-to-one
  kConvGroup = 2,  // group
  kConvSystem = 3,
};

inline bool IsChatConversation(uint32_t convType) {
  return convType == kConvC2C || convType == kConvGroup;
}

struct ConversationInfo_Stru {
  WString conv_id;
  uint32_t conv_type = 0;  // 1 one-to-one, 2 group
  WString owner;
  uint64_t unread_num = 0;
  uint64_t active_time = 0;
  bool has_last_msg = false;
  MessageStru last_msg;  // empty when the conversation has none
  bool has_draft = false;
  bool operator==(const ConversationInfo_Stru&) const = default;
};

#pragma once
// Handing a group to a new owner: the host's pre-check, the user's
// confirmation, the transfer, then the chat side.

#include <functional>

#include "host/user_prompt.h"

namespace host {

struct OwnerTransferRequest {
  int32_t cloudGroupId = -1;
  int32_t newOwnerId = -1;  // -1 = nobody chosen yet
  WString newOwnerName;
};

enum class OwnerTransferResult {
  kNoNewOwner,        // nothing asked of the host
  kUnavailable,       // no service or signed out: traced only
  kGroupQueryFailed,  // the group or the new owner's membership could not be looked up
  kRefused,           // the host's pre-check said no (its reason is traced)
  kCancelled,         // the user did not confirm
  kHostFailed,
  kDone,
};

OwnerTransferResult TransferGroupOwnership(const OwnerTransferRequest& request, const char* tag,
                                           UserPrompt& prompt,
                                           const std::function<void()>& chatFollowUp);

}  // namespace host

#include "host/owner_transfer.h"

#include "host/host_access.h"
#include "host/host_texts.h"
#include "platform/trace.h"

namespace host {

using platform::W;

OwnerTransferResult TransferGroupOwnership(const OwnerTransferRequest& request, const char* tag,
                                           UserPrompt& prompt,
                                           const std::function<void()>& chatFollowUp) {
  if (request.newOwnerId == -1) return OwnerTransferResult::kNoNewOwner;
  HostCloudService* cloud = AcquireCloudService(tag, Gate::kSignedIn);
  if (cloud == nullptr) return OwnerTransferResult::kUnavailable;

  int32_t allowed = 0;
  WString reason;
  cloud->CheckGroupOwnerTransfer(request.cloudGroupId, request.newOwnerId, allowed, reason);
  if (allowed == 0) {
    platform::Trace("CheckGroupOwnerTransfer refused: %s", platform::Utf16ToUtf8(reason).c_str());
    return OwnerTransferResult::kRefused;
  }
  if (!prompt.Confirm(W(text::kNoticeTitle),
                      text::Format(text::kTransferConfirm, request.newOwnerName))) {
    return OwnerTransferResult::kCancelled;
  }
  if (!cloud->TransferGroupOwner(request.cloudGroupId, request.newOwnerId)) {
    prompt.ShowMessage(W(text::kErrorTitle), W(text::kTransferFailed));
    return OwnerTransferResult::kHostFailed;
  }
  prompt.ShowMessage(
      W(text::kNoticeTitle),
      W(text::kTransferDone) + text::Format(text::kTransferDoneName, request.newOwnerName));
  if (chatFollowUp) chatFollowUp();
  return OwnerTransferResult::kDone;
}

}  // namespace host

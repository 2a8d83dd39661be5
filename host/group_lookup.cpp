#include "host/group_lookup.h"

#include "host/host_access.h"
#include "host/host_texts.h"
#include "platform/trace.h"

namespace host {

using platform::W;

void ShowGroupQueryFailure(GroupQueryWording wording, UserPrompt& prompt) {
  platform::Trace("%s", text::kGroupQueryFailedTrace);
  if (wording == GroupQueryWording::kAddMembers) {
    prompt.ShowMessage(W(text::kAddMembersQueryTitle), W(text::kAddMembersQueryFailed));
  } else {
    prompt.ShowMessage(W(text::kErrorTitle), W(text::kGroupQueryFailed));
  }
}

GroupLookup LookUpGroup(const WString& imGroupId, const char* tag, GroupQueryWording wording,
                        UserPrompt& prompt, GroupDetail& detail) {
  HostCloudService* cloud = AcquireCloudService(tag, Gate::kSignedIn);
  if (cloud == nullptr) return GroupLookup::kUnavailable;
  if (!cloud->GetGroupMembers(imGroupId.c_str(), detail)) {
    ShowGroupQueryFailure(wording, prompt);
    return GroupLookup::kFailed;
  }
  return GroupLookup::kFound;
}

}  // namespace host

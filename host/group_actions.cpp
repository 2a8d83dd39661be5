#include "host/group_actions.h"

#include "host/group_lookup.h"
#include "host/host_access.h"
#include "host/host_texts.h"
#include "platform/trace.h"

namespace host {
namespace {

using platform::W;

bool NeedsOwner(GroupAction action) {
  return action == GroupAction::kRemoveMembers || action == GroupAction::kDisband;
}

const char* FailureText(GroupAction action) {
  switch (action) {
    case GroupAction::kRemoveMembers:
      return text::kRemoveMembersFailed;
    case GroupAction::kLeave:
      return text::kLeaveFailed;
    case GroupAction::kDisband:
      return text::kDisbandFailed;
    case GroupAction::kAddMembers:
      return text::kAddMembersFailed;
    case GroupAction::kRename:
      return text::kRenameFailed;
  }
  return "";
}

bool PerformAction(HostCloudService& cloud, const GroupActionRequest& request, int32_t groupId) {
  switch (request.action) {
    case GroupAction::kRemoveMembers:
      return cloud.RemoveGroupMembers(groupId, request.members, 1);
    case GroupAction::kLeave:
      return cloud.RemoveGroupMembers(groupId, request.members, 2);
    case GroupAction::kDisband:
      return cloud.DisbandCloudGroup(groupId, 0);
    case GroupAction::kAddMembers: {
      int32_t added = 0;
      return cloud.AddGroupMembers(groupId, request.members, added);
    }
    case GroupAction::kRename:
      return cloud.RenameGroup(groupId, request.newName.c_str());
  }
  return false;
}

}  // namespace

GroupActionResult RunGroupAction(const GroupActionRequest& request, const char* tag,
                                 UserPrompt& prompt, const GroupChatFollowUp& followUp) {
  HostCloudService* cloud = AcquireCloudService(tag, Gate::kSignedIn);
  if (cloud == nullptr) return GroupActionResult::kUnavailable;

  GroupDetail group;
  if (!cloud->GetGroupMembers(request.imGroupId.c_str(), group)) {
    ShowGroupQueryFailure(request.action == GroupAction::kAddMembers
                              ? GroupQueryWording::kAddMembers
                              : GroupQueryWording::kCommon,
                          prompt);
    return GroupActionResult::kGroupQueryFailed;
  }
  const int32_t groupId = group.cloudGroupId;

  if (NeedsOwner(request.action)) {
    int32_t role = -1;
    if (!cloud->GetGroupRole(groupId, role)) {
      prompt.ShowMessage(W(text::kErrorTitle), W(text::kRoleQueryFailed));
      return GroupActionResult::kRoleQueryFailed;
    }
    if (role != 1) {
      prompt.ShowMessage(W(text::kNoticeTitle), W(text::kNotOwner));
      return GroupActionResult::kNotOwner;
    }
  }

  if (!PerformAction(*cloud, request, groupId)) {
    prompt.ShowMessage(W(text::kErrorTitle), W(FailureText(request.action)));
    return GroupActionResult::kHostFailed;
  }
  if (followUp) followUp(group);
  return GroupActionResult::kDone;
}

}  // namespace host

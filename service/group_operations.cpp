#include "service/group_operations.h"

#include "host/account_id.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/posting.h"

namespace service {
namespace {

using host::GroupAction;
using host::GroupActionResult;

// A user who is not looking gets no box from a quiet refresh.
class SilentPrompt final : public host::UserPrompt {
 public:
  void ShowMessage(const WString&, const WString&) override {}
  bool Confirm(const WString&, const WString&) override { return false; }
};

}  // namespace

host::GroupLookup GroupOperations::LookUp(const WString& groupId, const char* tag,
                                          host::GroupQueryWording wording) {
  GroupDetail detail;
  host::GroupLookup found = host::LookUpGroup(groupId, tag, wording, tools_.Window(), detail);
  if (found == host::GroupLookup::kFound) tools_.Roster().Store(groupId, detail, tools_.UserId());
  return found;
}

bool GroupOperations::Create(const WString& name, const CloudMemberList& members) {
  if (!tools_.CreateGroup(name, members)) return false;
  Refresh(WString());
  return true;
}

GroupActionResult GroupOperations::AddMembers(const WString& groupId,
                                              const CloudMemberList& members) {
  return Run({GroupAction::kAddMembers, groupId, members, {}},
             "AddGrouMember::AddMemberToGroup  error ");
}

GroupActionResult GroupOperations::RemoveMembers(const WString& groupId,
                                                 const CloudMemberList& members) {
  return Run({GroupAction::kRemoveMembers, groupId, members, {}},
             "DeleteGroupMember::DelMemberFromGroup  error ");
}

GroupActionResult GroupOperations::Rename(const WString& groupId, const WString& name) {
  return Run({GroupAction::kRename, groupId, {}, name}, "GroupFunction::ModifyGroupName  error ");
}

GroupActionResult GroupOperations::Leave(const WString& groupId) {
  return Run({GroupAction::kLeave, groupId, {Self()}, {}}, "GroupFunction::LeaveGroup  error ");
}

GroupActionResult GroupOperations::Disband(const WString& groupId) {
  return Run({GroupAction::kDisband, groupId, {}, {}}, "DisbandGroup::DelMemberFromGroup  error ");
}

host::OwnerTransferResult GroupOperations::TransferOwner(const WString& groupId,
                                                         const CloudGroupMember& newOwner) {
  // The group's cloud id and the new owner's chat id come from the host's
  // member list, which the transfer looks up first.
  host::OwnerTransferRequest request;
  request.newOwnerId = newOwner.accountId;
  request.newOwnerName = newOwner.displayName.empty() ? newOwner.imUserId : newOwner.displayName;
  host::OwnerTransferResult result =
      tools_.TransferGroupOwner(groupId, request, "TransferManage::TransferGroupManage  error ");
  if (result == host::OwnerTransferResult::kDone) Refresh(groupId);
  return result;
}

CloudGroupMember GroupOperations::Self() const {
  CloudGroupMember self;
  self.imUserId = tools_.UserId();
  self.accountId = host::AccountIdOfImUser(self.imUserId).value_or(-1);
  self.displayName = tools_.PersonName(self.imUserId);
  return self;
}

GroupActionResult GroupOperations::Run(host::GroupActionRequest request, const char* tag) {
  GroupActionResult result = tools_.RunGroupAction(request, tag);
  if (result != GroupActionResult::kDone) return result;
  if (request.action == GroupAction::kLeave || request.action == GroupAction::kDisband) {
    Forget(request.imGroupId);
  } else {
    Refresh(request.imGroupId);
  }
  return result;
}

void GroupOperations::Refresh(const WString& groupId) {
  tools_.LoadHostGroups();
  tools_.RequestJoinedGroupList();
  if (groupId.empty()) return;
  GroupDetail detail;
  SilentPrompt quiet;
  if (host::LookUpGroup(groupId, "GroupFunction::GetGroupMemList  error ",
                        host::GroupQueryWording::kCommon, quiet,
                        detail) == host::GroupLookup::kFound) {
    tools_.Roster().Store(groupId, detail, tools_.UserId());
  }
}

void GroupOperations::Forget(const WString& groupId) {
  tools_.Roster().Forget(groupId);
  // The history of a group no longer joined goes, as the conversation list
  // does for such groups; the window closes its page and drops the
  // conversation on 3178.
  tools_.DeleteStoredHistory(groupId);
  PostPayload<platform::msg::kConversationDatum>(tools_.ChatWindow(), kNoSession, groupId);
  tools_.LoadHostGroups();
  tools_.RequestJoinedGroupList();
}

}  // namespace service

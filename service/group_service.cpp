// The group service: joined groups from the host and from the SDK, group
// information for conversation names and pictures, and the group actions
// (host first, the IM side only after the host agreed).
#include <json/json.h>

#include "host/group_lookup.h"
#include "host/host_access.h"
#include "imsdk/im_sdk.h"
#include "platform/json_text.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "service/sdk_text.h"
#include "service/sending_json.h"

using service::OrEmpty;

namespace {

WString StringOf(const Json::Value& object, const char* key) {
  const Json::Value& value = object[key];
  return value.isString() ? platform::Utf8ToUtf16(value.asString()) : WString();
}

// The SDK's joined-group array; entries without an id are skipped.
bool ParseJoinedGroups(const char* text, std::vector<GroupInfo>& out) {
  Json::Value array;
  std::string errors;
  if (!platform::ParseJsonText(OrEmpty(text), array, &errors) || !array.isArray()) {
    platform::Trace("解析json数据错误！error:%s", errors.c_str());
    return false;
  }
  for (const Json::Value& item : array) {
    if (!item.isObject()) continue;
    GroupInfo group;
    group.group_id = StringOf(item, "group_base_info_group_id");
    group.name = StringOf(item, "group_base_info_group_name");
    group.face_url = StringOf(item, "group_base_info_face_url");
    group.owner = StringOf(item, "group_base_info_owner_identifier");
    if (!group.group_id.empty()) out.push_back(std::move(group));
  }
  return true;
}

Json::Value IdArray(const CloudMemberList& members) {
  Json::Value ids(Json::arrayValue);
  for (const CloudGroupMember& member : members) ids.append(platform::Utf16ToUtf8(member.imUserId));
  return ids;
}

}  // namespace

void CChatTools::LoadHostGroups() {
  LoadHostGroups(CurrentSession());
}

void CChatTools::LoadHostGroups(service::SessionStamp session) {
  HostCloudService* cloud = host::AcquireCloudService("CChatTools::LoadHostGroups");
  CloudGroupList groups;
  if (cloud == nullptr || !cloud->GetJoinedGroups(groups)) {
    platform::Trace("获取已加入群组列表 失败!!! host");
    return;
  }
  if (session_.WhileCurrent(session, [&] { groups_.ReplaceHostGroups(std::move(groups)); })) {
    service::Post<platform::msg::kGroupListChanged>(ChatWindow());
  }
}

int CChatTools::RequestJoinedGroupList() {
  platform::Trace("获取已加入群组列表 开始!!!");
  int ret = TIMGroupGetJoinedGroupList(&CChatTools::TIMGroupGetJoinedGroupListFunc, this);
  if (ret != 0) {
    platform::Trace("获取已加入群组列表 失败!!! error code:%d", ret);
  } else {
    platform::Trace("获取已加入群组列表 结束!!!");
  }
  return ret;
}

void CChatTools::TIMGroupGetJoinedGroupListFunc(int32_t code, const char* desc, const char* json,
                                                void* user) {
  service::EnterExitTrace trace("TIMGroupGetJoinedGroupListFunc");
  if (code != 0) {
    platform::Trace("获取已加入群组列表 失败!!! code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), OrEmpty(desc), OrEmpty(json));
    return;
  }
  if (user == nullptr) return;
  std::vector<GroupInfo> groups;
  if (!ParseJoinedGroups(json, groups)) return;
  CChatTools& self = *From(user);
  if (self.session_.WhileCurrent(self.CurrentSession(),
                                 [&] { self.groups_.ReplaceSdkGroups(std::move(groups)); })) {
    service::Post<platform::msg::kGroupListChanged>(self.ChatWindow());
  }
}

std::vector<GroupInfo> CChatTools::Groups() const {
  return groups_.All();
}

std::optional<GroupInfo> CChatTools::FindGroup(const WString& groupId) const {
  return groups_.Find(groupId);
}

std::vector<CloudGroupInfo> CChatTools::HostGroups() const {
  return groups_.HostGroups();
}

bool CChatTools::IsJoinedGroup(const WString& groupId) const {
  return groups_.IsJoined(groupId);
}

host::GroupActionResult CChatTools::RunGroupAction(const host::GroupActionRequest& request,
                                                   const char* tag) {
  return host::RunGroupAction(request, tag, Window(), [this, &request](const GroupDetail& group) {
    FollowUpGroupAction(request, group);
  });
}

void CChatTools::FollowUpGroupAction(const host::GroupActionRequest& request, const GroupDetail&) {
  std::string groupId = platform::Utf16ToUtf8(request.imGroupId);
  int ret = 0;
  switch (request.action) {
    case host::GroupAction::kRemoveMembers: {
      Json::Value param;
      param["group_delete_member_param_group_id"] = groupId;
      param["group_delete_member_param_identifier_array"] = IdArray(request.members);
      ret = TIMGroupDeleteMember(service::CompactText(param).c_str(),
                                 &CChatTools::TIMGroupActionFunc, this);
      break;
    }
    case host::GroupAction::kLeave:
      ret = TIMGroupQuit(groupId.c_str(), &CChatTools::TIMGroupActionFunc, this);
      break;
    case host::GroupAction::kDisband:
      ret = TIMGroupDelete(groupId.c_str(), &CChatTools::TIMGroupActionFunc, this);
      break;
    case host::GroupAction::kAddMembers: {
      Json::Value param;
      param["group_invite_member_param_group_id"] = groupId;
      param["group_invite_member_param_identifier_array"] = IdArray(request.members);
      ret = TIMGroupInviteMember(service::CompactText(param).c_str(),
                                 &CChatTools::TIMGroupActionFunc, this);
      break;
    }
    case host::GroupAction::kRename: {
      Json::Value param;
      param["group_modify_info_param_group_id"] = groupId;
      param["group_modify_info_param_group_name"] = platform::Utf16ToUtf8(request.newName);
      ret = TIMGroupModifyGroupInfo(service::CompactText(param).c_str(),
                                    &CChatTools::TIMGroupActionFunc, this);
      break;
    }
  }
  if (ret != 0) platform::Trace("群组操作 失败!!! group:%s ret:%d", groupId.c_str(), ret);
}

bool CChatTools::CreateGroup(const WString& name, const CloudMemberList& members) {
  HostCloudService* cloud =
      host::AcquireCloudService("CChatTools::CreateGroup", host::Gate::kSignedIn);
  CloudGroupInfo created;
  if (cloud == nullptr || !cloud->CreateCloudGroup(u"Public", name.c_str(), members, created)) {
    platform::Trace("创建群组 失败!!! host");
    return false;
  }
  if (CreateImGroup(name, members, created)) return true;
  // The chat side refused: the cloud group would be an orphan nobody can
  // chat in, so it goes again and the user's "failed" is the truth.
  if (!cloud->DisbandCloudGroup(created.cloudGroupId, 0)) {
    platform::Trace("创建群组: 云端群 %d 未能撤销", created.cloudGroupId);
  }
  return false;
}

bool CChatTools::CreateImGroup(const WString& name, const CloudMemberList& members,
                               const CloudGroupInfo& created) {
  Json::Value param;
  param["create_group_param_group_name"] = platform::Utf16ToUtf8(name);
  if (!created.imGroupId.empty()) {
    param["create_group_param_group_id"] = platform::Utf16ToUtf8(created.imGroupId);
  }
  param["create_group_param_group_type"] = 0;
  Json::Value memberArray(Json::arrayValue);
  for (const CloudGroupMember& member : members) {
    Json::Value entry;
    entry["group_member_info_identifier"] = platform::Utf16ToUtf8(member.imUserId);
    memberArray.append(entry);
  }
  param["create_group_param_group_member_array"] = memberArray;
  int ret =
      TIMGroupCreate(service::CompactText(param).c_str(), &CChatTools::TIMGroupActionFunc, this);
  if (ret != 0) platform::Trace("创建群组 失败!!! ret:%d", ret);
  return ret == 0;
}

host::OwnerTransferResult CChatTools::TransferGroupOwner(const WString& imGroupId,
                                                         const host::OwnerTransferRequest& request,
                                                         const char* tag) {
  using Result = host::OwnerTransferResult;
  if (request.newOwnerId == -1) return Result::kNoNewOwner;
  // Like every group action, it starts from the group as the host knows it:
  // the cloud id and the new owner's chat id come from its member list.
  GroupDetail group;
  switch (host::LookUpGroup(imGroupId, tag, host::GroupQueryWording::kCommon, Window(), group)) {
    case host::GroupLookup::kUnavailable:
      return Result::kUnavailable;
    case host::GroupLookup::kFailed:
      return Result::kGroupQueryFailed;
    case host::GroupLookup::kFound:
      break;
  }
  WString newOwnerImId;
  for (const CloudGroupMember& member : group.members) {
    if (member.accountId == request.newOwnerId) newOwnerImId = member.imUserId;
  }
  host::OwnerTransferRequest checked = request;
  checked.cloudGroupId = group.cloudGroupId;
  return host::TransferGroupOwnership(checked, tag, Window(), [this, &imGroupId, &newOwnerImId] {
    if (newOwnerImId.empty()) {
      // Not a member the host listed: the chat side is not guessed at.
      platform::Trace("转让群主: 新群主不在群成员中, 聊天侧未改");
      return;
    }
    Json::Value param;
    param["group_modify_info_param_group_id"] = platform::Utf16ToUtf8(imGroupId);
    param["group_modify_info_param_owner"] = platform::Utf16ToUtf8(newOwnerImId);
    int ret = TIMGroupModifyGroupInfo(service::CompactText(param).c_str(),
                                      &CChatTools::TIMGroupActionFunc, this);
    if (ret != 0) platform::Trace("转让群主 失败!!! ret:%d", ret);
  });
}

void CChatTools::TIMGroupActionFunc(int32_t code, const char* desc, const char* json, void*) {
  // The group tips that follow a change reload the groups; the result is traced.
  if (code == 0) {
    platform::Trace("群组操作 成功!!! code:%u ,desc:%s ,json_param:%s", 0U, OrEmpty(desc),
                    OrEmpty(json));
  } else {
    platform::Trace("群组操作 失败!!! code:%u ,desc:%s ,json_param:%s", static_cast<unsigned>(code),
                    OrEmpty(desc), OrEmpty(json));
  }
}

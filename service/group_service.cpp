// The group service: joined groups from the host and from the SDK, group
// information for conversation names and pictures, and the group actions
// (host first, the IM side only after the host agreed).
#include <json/json.h>

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
  HostCloudService* cloud = host::AcquireCloudService("CChatTools::LoadHostGroups");
  CloudGroupList groups;
  if (cloud == nullptr || !cloud->GetJoinedGroups(groups)) {
    platform::Trace("获取已加入群组列表 失败!!! host");
    return;
  }
  {
    std::lock_guard lock(cache_mutex_);
    host_groups_ = std::move(groups);
    joined_groups_known_ = true;
    RebuildGroupMapLocked();
  }
  service::Post(ChatWindow(), platform::msg::kGroupListChanged);
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
  platform::Trace("TIMGroupGetJoinedGroupListFunc enter!!!!!!");
  if (code != 0) {
    platform::Trace("获取已加入群组列表 失败!!! code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), OrEmpty(desc), OrEmpty(json));
  } else if (user != nullptr) {
    std::vector<GroupInfo> groups;
    if (ParseJoinedGroups(json, groups)) From(user)->ReplaceSdkGroups(std::move(groups));
  }
  platform::Trace("TIMGroupGetJoinedGroupListFunc exit!!!!!!");
}

void CChatTools::ReplaceSdkGroups(std::vector<GroupInfo> groups) {
  {
    std::lock_guard lock(cache_mutex_);
    sdk_groups_ = std::move(groups);
    joined_groups_known_ = true;
    RebuildGroupMapLocked();
  }
  service::Post(ChatWindow(), platform::msg::kGroupListChanged);
}

void CChatTools::RebuildGroupMapLocked() {
  // The SDK knows names and owners as they are now; the host adds its cloud
  // ids and fills what the SDK did not report.
  groups_.clear();
  for (const GroupInfo& group : sdk_groups_) groups_[group.group_id] = group;
  for (const CloudGroupInfo& cloud : host_groups_) {
    if (cloud.imGroupId.empty()) continue;
    GroupInfo& group = groups_[cloud.imGroupId];
    group.group_id = cloud.imGroupId;
    group.cloud_group_id = cloud.cloudGroupId;
    if (group.name.empty()) group.name = cloud.name;
    if (group.face_url.empty()) group.face_url = cloud.avatarUrl;
  }
}

std::vector<GroupInfo> CChatTools::Groups() const {
  std::lock_guard lock(cache_mutex_);
  std::vector<GroupInfo> groups;
  for (const auto& [id, group] : groups_) groups.push_back(group);
  return groups;
}

std::optional<GroupInfo> CChatTools::FindGroup(const WString& groupId) const {
  std::lock_guard lock(cache_mutex_);
  auto it = groups_.find(groupId);
  if (it == groups_.end()) return std::nullopt;
  return it->second;
}

std::vector<CloudGroupInfo> CChatTools::HostGroups() const {
  std::lock_guard lock(cache_mutex_);
  return host_groups_;
}

bool CChatTools::IsJoinedGroup(const WString& groupId) const {
  std::lock_guard lock(cache_mutex_);
  return groups_.count(groupId) != 0;
}

bool CChatTools::IsKnownGroupLocked(const WString& groupId) const {
  // Before any joined-group list arrived nothing is known to be left: keep
  // the conversation rather than delete a user's history on a guess.
  return !joined_groups_known_ || groups_.count(groupId) != 0;
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
  if (ret != 0) {
    platform::Trace("创建群组 失败!!! ret:%d", ret);
    return false;
  }
  return true;
}

host::OwnerTransferResult CChatTools::TransferGroupOwner(const WString& imGroupId,
                                                         const host::OwnerTransferRequest& request,
                                                         const char* tag) {
  return host::TransferGroupOwnership(request, tag, Window(), [this, &imGroupId, &request] {
    Json::Value param;
    param["group_modify_info_param_group_id"] = platform::Utf16ToUtf8(imGroupId);
    param["group_modify_info_param_owner"] = std::to_string(request.newOwnerId);
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

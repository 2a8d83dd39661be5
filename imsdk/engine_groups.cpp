// Groups: membership, owner, name, and the tips every change leaves behind.
#include <algorithm>
#include <chrono>
#include <set>

#include "imsdk/api_objects.h"
#include "imsdk/engine.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"

namespace imsdk {

Json::Value Engine::GroupTipElemLocked(const Group& group, int tip_type, const std::string& actor,
                                       const std::vector<std::string>& users) const {
  return GroupTipElem(
      tip_type, GroupFieldsOf(group), actor, users, NowSeconds(),
      [this](const std::string& id) { return BriefProfileLocked(id); },
      [this, &group](const std::string& id) {
        for (const auto& m : group.members) {
          if (m.id == id) return MemberValueLocked(m);
        }
        return Json::Value();
      });
}

void Engine::GroupChangedLocked(GroupChange change) {
  const uint64_t number = group_changes_.Queue(std::move(change));
  if (sink_ != nullptr) {
    sink_->RunLater(std::chrono::milliseconds(0),
                    [this, number] { group_changes_.WaitDelivered(number); });
  }
}

void Engine::PostGroupTipLocked(const Group& group, const std::string& actor, Json::Value elem,
                                const std::vector<std::string>& extra_receivers) {
  std::set<std::string> receivers(extra_receivers.begin(), extra_receivers.end());
  for (const auto& m : group.members) receivers.insert(m.id);
  Message msg;
  msg.unique_id = NewMessageIdLocked();
  msg.conv_type = kTIMConv_Group;
  msg.sender = actor;
  msg.client_time = msg.server_time = NowSeconds();
  msg.elems = Json::Value(Json::arrayValue);
  msg.elems.append(elem);
  const bool is_tip = elem["elem_type"].asInt() == kTIMElem_GroupTips;
  for (const auto& receiver : receivers) {
    Account* account = FindAccountLocked(receiver);
    if (account == nullptr) continue;
    // Everyone, the actor too, sees the tip arrive: it is the group's notice.
    Conversation& conv = account->conversations[{kTIMConv_Group, group.id}];
    Message copy = msg;
    copy.conv_id = group.id;
    copy.is_read = receiver == actor;
    if (receiver != actor) ++conv.unread;
    conv.active_time = msg.server_time;
    conv.order = ++world_.activity;
    Json::Value array(Json::arrayValue);
    array.append(MessageValueLocked(copy, receiver));
    NotifyLocked(receiver, Event{EventKind::kNewMessages, WriteJson(array)});
    if (is_tip) NotifyLocked(receiver, Event{EventKind::kGroupTips, WriteJson(elem)});
    conv.messages.push_back(std::move(copy));
  }
  ChangedLocked();
}

std::string Engine::CreateGroupLocked(const std::string& owner, const std::string& name,
                                      const std::string& wanted_id, const std::string& face_url,
                                      int type, const std::vector<std::string>& members,
                                      int* code) {
  *code = TIM_SUCC;
  if (FindAccountLocked(owner) == nullptr) {
    *code = TIM_ERR_ACCOUNT_NOT_FOUND;
    return "";
  }
  std::string id = wanted_id;
  if (!id.empty() && world_.groups.count(id) > 0) {
    *code = TIM_ERR_GROUP_EXISTS;
    return "";
  }
  while (id.empty() || world_.groups.count(id) > 0) {
    id = "group-" + std::to_string(world_.next_group_number++);
  }
  Group group;
  group.id = id;
  group.name = name;
  group.face_url = face_url;
  group.type = type;
  group.owner = owner;
  group.create_time = NowSeconds();
  group.members.push_back({owner, group.create_time, 3});
  std::vector<std::string> joined{owner};
  for (const auto& m : members) {
    if (FindAccountLocked(m) == nullptr || group.HasMember(m)) continue;
    group.members.push_back({m, group.create_time, 1});
    joined.push_back(m);
  }
  const Group& stored = world_.groups[id] = std::move(group);
  GroupChange change{GroupChange::Kind::kCreated, id, stored.name, owner, {}};
  for (const auto& m : stored.members) change.members.push_back(m.id);
  GroupChangedLocked(std::move(change));
  PostGroupTipLocked(stored, owner, GroupTipElemLocked(stored, kTIMGroupTip_Invite, owner, joined),
                     {});
  return id;
}

int Engine::DisbandGroupLocked(const std::string& actor, const std::string& group_id) {
  auto it = world_.groups.find(group_id);
  if (it == world_.groups.end()) return TIM_ERR_GROUP_NOT_FOUND;
  if (it->second.owner != actor) return TIM_ERR_GROUP_PERMISSION;
  Group group = std::move(it->second);
  world_.groups.erase(it);
  Json::Value report = GroupReportElem(kTIMGroupReport_Disband, group.id, group.name, actor,
                                       BriefProfileLocked(actor));
  GroupChangedLocked({GroupChange::Kind::kDismissed, group.id, "", "", {}});
  PostGroupTipLocked(group, actor, report, {});
  return TIM_SUCC;
}

int Engine::QuitGroupLocked(const std::string& actor, const std::string& group_id) {
  auto it = world_.groups.find(group_id);
  if (it == world_.groups.end()) return TIM_ERR_GROUP_NOT_FOUND;
  Group& group = it->second;
  if (!group.HasMember(actor)) return TIM_ERR_NOT_GROUP_MEMBER;
  if (group.owner == actor) return TIM_ERR_GROUP_PERMISSION;
  std::erase_if(group.members, [&](const GroupMember& m) { return m.id == actor; });
  GroupChangedLocked({GroupChange::Kind::kLeft, group_id, "", "", {actor}});
  PostGroupTipLocked(group, actor, GroupTipElemLocked(group, kTIMGroupTip_Quit, actor, {actor}),
                     {actor});
  return TIM_SUCC;
}

int Engine::InviteLocked(const std::string& actor, const std::string& group_id,
                         const std::vector<std::string>& ids, Json::Value* results) {
  auto it = world_.groups.find(group_id);
  if (it == world_.groups.end()) return TIM_ERR_GROUP_NOT_FOUND;
  Group& group = it->second;
  if (!group.HasMember(actor)) return TIM_ERR_NOT_GROUP_MEMBER;
  std::vector<std::string> added;
  *results = Json::Value(Json::arrayValue);
  for (const auto& id : ids) {
    int result = 0;
    if (group.HasMember(id)) {
      result = 2;
    } else if (FindAccountLocked(id) != nullptr) {
      group.members.push_back({id, NowSeconds(), 1});
      added.push_back(id);
      result = 1;
    }
    Json::Value entry;
    entry["group_invite_member_result_identifier"] = id;
    entry["group_invite_member_result_result"] = result;
    results->append(entry);
  }
  if (!added.empty()) {
    GroupChangedLocked({GroupChange::Kind::kJoined, group_id, "", "", added});
    PostGroupTipLocked(group, actor, GroupTipElemLocked(group, kTIMGroupTip_Invite, actor, added),
                       {});
  }
  return TIM_SUCC;
}

int Engine::KickLocked(const std::string& actor, const std::string& group_id,
                       const std::vector<std::string>& ids, Json::Value* results) {
  auto it = world_.groups.find(group_id);
  if (it == world_.groups.end()) return TIM_ERR_GROUP_NOT_FOUND;
  Group& group = it->second;
  if (group.owner != actor) return TIM_ERR_GROUP_PERMISSION;
  std::vector<std::string> removed;
  *results = Json::Value(Json::arrayValue);
  for (const auto& id : ids) {
    bool ok = id != actor && group.HasMember(id);
    if (ok) {
      std::erase_if(group.members, [&](const GroupMember& m) { return m.id == id; });
      removed.push_back(id);
    }
    Json::Value entry;
    entry["group_delete_member_result_identifier"] = id;
    entry["group_delete_member_result_result"] = ok ? 1 : 0;
    results->append(entry);
  }
  if (!removed.empty()) {
    GroupChangedLocked({GroupChange::Kind::kLeft, group_id, "", "", removed});
    PostGroupTipLocked(group, actor, GroupTipElemLocked(group, kTIMGroupTip_Kick, actor, removed),
                       removed);
  }
  return TIM_SUCC;
}

int Engine::ModifyGroupLocked(const std::string& actor, const std::string& group_id,
                              const std::string* name, const std::string* face,
                              const std::string* owner) {
  auto it = world_.groups.find(group_id);
  if (it == world_.groups.end()) return TIM_ERR_GROUP_NOT_FOUND;
  Group& group = it->second;
  if (!group.HasMember(actor)) return TIM_ERR_NOT_GROUP_MEMBER;
  if (owner != nullptr) {
    if (group.owner != actor) return TIM_ERR_GROUP_PERMISSION;
    if (!group.HasMember(*owner)) return TIM_ERR_NOT_GROUP_MEMBER;
  }
  Json::Value changes(Json::arrayValue);
  if (name != nullptr) {
    group.name = *name;
    changes.append(GroupChangeInfo(1, *name));
    GroupChangedLocked({GroupChange::Kind::kRenamed, group_id, *name, "", {}});
  }
  if (face != nullptr) {
    group.face_url = *face;
    changes.append(GroupChangeInfo(3, *face));
  }
  if (owner != nullptr && *owner != group.owner) {
    for (auto& m : group.members) m.role = m.id == *owner ? 3 : 1;
    group.owner = *owner;
    changes.append(GroupChangeInfo(5, *owner));
    GroupChangedLocked({GroupChange::Kind::kOwnerChanged, group_id, *owner, "", {}});
  }
  if (changes.empty()) return TIM_SUCC;
  Json::Value tip = GroupTipElemLocked(group, kTIMGroupTip_InfoChange, actor, {});
  tip["group_tips_elem_group_change_info_array"] = changes;
  PostGroupTipLocked(group, actor, tip, {});
  return TIM_SUCC;
}

// ---- Requests of the signed-in account ----

namespace {

// Answers `done` with the code, or with `result` when it is 0.
void Answer(const ResultFn& done, int code, const Json::Value& result) {
  if (code != TIM_SUCC) {
    done(code, "group request failed", "");
  } else {
    done(TIM_SUCC, "", result.isNull() ? "" : WriteJson(result));
  }
}

}  // namespace

int Engine::GetJoinedGroups(ResultFn done) {
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupGetJoinedGroupList", done)) return TIM_SUCC;
  Json::Value list(Json::arrayValue);
  for (const auto& [id, group] : world_.groups) {
    if (group.HasMember(signed_in_)) list.append(GroupValueLocked(group));
  }
  done(TIM_SUCC, "", WriteJson(list));
  return TIM_SUCC;
}

int Engine::GetGroupInfos(const Json::Value& ids, ResultFn done) {
  for (const auto& id : ids) {
    if (!id.isString()) return TIM_ERR_INVALID_JSON;
  }
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupGetGroupInfoList", done)) return TIM_SUCC;
  Json::Value list(Json::arrayValue);
  for (const auto& id : ids) {
    auto it = world_.groups.find(id.asString());
    if (it == world_.groups.end()) continue;
    Json::Value info = GroupValueLocked(it->second);
    Json::Value members(Json::arrayValue);
    for (const auto& m : it->second.members) members.append(MemberValueLocked(m));
    info["group_base_info_member_array"] = members;
    list.append(info);
  }
  done(TIM_SUCC, "", WriteJson(list));
  return TIM_SUCC;
}

int Engine::CreateGroup(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string name = reader.String("create_group_param_group_name");
  std::string id = reader.String("create_group_param_group_id");
  int64_t type = reader.Int64("create_group_param_group_type", 0);
  std::string face = reader.String("create_group_param_face_url");
  std::vector<std::string> members;
  const Json::Value& array = param["create_group_param_group_member_array"];
  if (!array.isNull() && !array.isArray()) return TIM_ERR_INVALID_JSON;
  for (const auto& m : array) {
    if (!m.isObject() || !m["group_member_info_identifier"].isString()) {
      return TIM_ERR_INVALID_JSON;
    }
    members.push_back(m["group_member_info_identifier"].asString());
  }
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (name.empty() || id.size() > TIM_MAX_ID_LENGTH) return TIM_ERR_INVALID_PARAM;
  GroupChangesFlush flush(*this);
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupCreate", done) || NetworkDownLocked(done)) return TIM_SUCC;
  int code = TIM_SUCC;
  std::string created =
      CreateGroupLocked(signed_in_, name, id, face, static_cast<int>(type), members, &code);
  Json::Value result;
  result["create_group_result_groupid"] = created;
  Answer(done, code, result);
  return TIM_SUCC;
}

int Engine::DisbandGroup(const std::string& group_id, ResultFn done) {
  GroupChangesFlush flush(*this);
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupDelete", done) || NetworkDownLocked(done)) return TIM_SUCC;
  Answer(done, DisbandGroupLocked(signed_in_, group_id), Json::Value());
  return TIM_SUCC;
}

int Engine::QuitGroup(const std::string& group_id, ResultFn done) {
  GroupChangesFlush flush(*this);
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupQuit", done) || NetworkDownLocked(done)) return TIM_SUCC;
  Answer(done, QuitGroupLocked(signed_in_, group_id), Json::Value());
  return TIM_SUCC;
}

int Engine::InviteMembers(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string group_id = reader.String("group_invite_member_param_group_id");
  auto ids = reader.StringArray("group_invite_member_param_identifier_array");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (group_id.empty() || ids.empty()) return TIM_ERR_INVALID_PARAM;
  GroupChangesFlush flush(*this);
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupInviteMember", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  Json::Value results;
  Answer(done, InviteLocked(signed_in_, group_id, ids, &results), results);
  return TIM_SUCC;
}

int Engine::RemoveMembers(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string group_id = reader.String("group_delete_member_param_group_id");
  auto ids = reader.StringArray("group_delete_member_param_identifier_array");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (group_id.empty() || ids.empty()) return TIM_ERR_INVALID_PARAM;
  GroupChangesFlush flush(*this);
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupDeleteMember", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  Json::Value results;
  Answer(done, KickLocked(signed_in_, group_id, ids, &results), results);
  return TIM_SUCC;
}

int Engine::ModifyGroup(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string group_id = reader.String("group_modify_info_param_group_id");
  bool has_name = reader.Has("group_modify_info_param_group_name");
  std::string name = reader.String("group_modify_info_param_group_name");
  bool has_face = reader.Has("group_modify_info_param_face_url");
  std::string face = reader.String("group_modify_info_param_face_url");
  bool has_owner = reader.Has("group_modify_info_param_owner");
  std::string owner = reader.String("group_modify_info_param_owner");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (group_id.empty() || (has_name && name.empty()) || (has_owner && owner.empty()) ||
      !(has_name || has_face || has_owner)) {
    return TIM_ERR_INVALID_PARAM;
  }
  GroupChangesFlush flush(*this);
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupModifyGroupInfo", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  Answer(done,
         ModifyGroupLocked(signed_in_, group_id, has_name ? &name : nullptr,
                           has_face ? &face : nullptr, has_owner ? &owner : nullptr),
         Json::Value());
  return TIM_SUCC;
}

int Engine::GetMembers(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string group_id = reader.String("group_get_members_info_list_param_group_id");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (group_id.empty()) return TIM_ERR_INVALID_PARAM;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMGroupGetMemberInfoList", done)) return TIM_SUCC;
  auto it = world_.groups.find(group_id);
  if (it == world_.groups.end()) {
    done(TIM_ERR_GROUP_NOT_FOUND, "no such group", "");
    return TIM_SUCC;
  }
  Json::Value members(Json::arrayValue);
  for (const auto& m : it->second.members) members.append(MemberValueLocked(m));
  Json::Value result;
  result["group_get_member_info_list_result_info_array"] = members;
  done(TIM_SUCC, "", WriteJson(result));
  return TIM_SUCC;
}

}  // namespace imsdk

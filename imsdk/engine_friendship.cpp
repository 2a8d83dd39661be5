// Friends, friend requests (pendencies) and profiles.
#include <algorithm>

#include "imsdk/api_objects.h"
#include "imsdk/engine.h"
#include "imsdk/friend_results.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"

namespace imsdk {
namespace {

Json::Value IdArray(const std::string& id) {
  Json::Value array(Json::arrayValue);
  array.append(id);
  return array;
}

void ErasePendencies(Account& account, const std::string& peer) {
  std::erase_if(account.pendencies, [&](const Pendency& p) { return p.peer == peer; });
}

}  // namespace

void Engine::MakeFriendsLocked(const std::string& a, const std::string& b,
                               const std::string& source, const std::string& wording) {
  for (const auto& [owner, other] : {std::pair{a, b}, std::pair{b, a}}) {
    Account* account = FindAccountLocked(owner);
    if (account == nullptr) continue;
    ErasePendencies(*account, other);
    if (account->friends.count(other) > 0) continue;
    account->friends[other] = Friend{other, "", {}, wording, source, NowSeconds()};
    NotifyLocked(owner, Event{EventKind::kFriendsAdded, WriteJson(IdArray(other))});
  }
  ChangedLocked();
}

bool Engine::RemoveFriendLocked(const std::string& owner, const std::string& friend_id) {
  Account* account = FindAccountLocked(owner);
  if (account == nullptr || account->friends.erase(friend_id) == 0) return false;
  NotifyLocked(owner, Event{EventKind::kFriendsDeleted, WriteJson(IdArray(friend_id))});
  ChangedLocked();
  return true;
}

int Engine::FriendRequestLocked(const std::string& from, const std::string& to,
                                const std::string& source, const std::string& wording,
                                const std::string& remark) {
  Account* requester = FindAccountLocked(from);
  Account* target = FindAccountLocked(to);
  if (requester == nullptr || target == nullptr) return TIM_ERR_ACCOUNT_NOT_FOUND;
  if (from == to) return TIM_ERR_INVALID_PARAM;
  if (requester->friends.count(to) > 0) return TIM_FRIEND_RESULT_ALREADY_FRIEND;
  // A peer that still lists the requester, or lets anyone in, needs no answer.
  if (target->friends.count(from) > 0 || target->add_permission == kTIMAddPermission_AllowAny) {
    MakeFriendsLocked(from, to, source, wording);
    if (!remark.empty()) requester->friends[to].remark = remark;
    return TIM_SUCC;
  }
  if (target->add_permission == kTIMAddPermission_DenyAny) return TIM_FRIEND_RESULT_DENIED;
  ErasePendencies(*requester, to);
  ErasePendencies(*target, from);
  uint64_t now = NowSeconds();
  target->pendencies.push_back(
      Pendency{++target->pendency_seq, kTIMPendency_ComeIn, from, now, source, wording});
  requester->pendencies.push_back(
      Pendency{++requester->pendency_seq, kTIMPendency_SendOut, to, now, source, wording});
  Json::Value array(Json::arrayValue);
  array.append(PendencyValueLocked(target->pendencies.back()));
  NotifyLocked(to, Event{EventKind::kFriendRequests, WriteJson(array)});
  ChangedLocked();
  return TIM_FRIEND_RESULT_PENDING;
}

int Engine::AnswerRequestLocked(const std::string& owner, const std::string& requester_id,
                                int action) {
  Account* account = FindAccountLocked(owner);
  if (account == nullptr) return TIM_ERR_ACCOUNT_NOT_FOUND;
  auto it = std::find_if(
      account->pendencies.begin(), account->pendencies.end(),
      [&](const Pendency& p) { return p.peer == requester_id && p.type == kTIMPendency_ComeIn; });
  if (it == account->pendencies.end()) return TIM_ERR_PENDENCY_NOT_FOUND;
  Pendency pendency = *it;
  ErasePendencies(*account, requester_id);
  Account* requester = FindAccountLocked(requester_id);
  if (requester != nullptr) ErasePendencies(*requester, owner);
  if (action == 1) {
    MakeFriendsLocked(owner, requester_id, pendency.add_source, pendency.add_wording);
  } else if (action == 0 && requester != nullptr && requester->friends.count(owner) == 0) {
    requester->friends[owner] =
        Friend{owner, "", {}, pendency.add_wording, pendency.add_source, NowSeconds()};
    NotifyLocked(requester_id, Event{EventKind::kFriendsAdded, WriteJson(IdArray(owner))});
  }
  ChangedLocked();
  return TIM_SUCC;
}

void Engine::ProfileChangedLocked(const std::string& account_id) {
  const Account* account = FindAccountLocked(account_id);
  if (account == nullptr || signed_in_.empty() || signed_in_ == account_id) return;
  if (SelfLocked().friends.count(account_id) == 0) return;
  Json::Value update;
  update["friend_profile_update_identifier"] = account_id;
  update["friend_profile_update_item"]["friend_profile_item_nick_name"] = account->nick;
  update["friend_profile_update_item"]["friend_profile_item_face_url"] = account->face_url;
  Json::Value array(Json::arrayValue);
  array.append(update);
  NotifyLocked(signed_in_, Event{EventKind::kFriendProfileUpdated, WriteJson(array)});
}

int Engine::GetFriends(ResultFn done) {
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipGetFriendProfileList", done)) return TIM_SUCC;
  Json::Value list(Json::arrayValue);
  for (const auto& [id, f] : SelfLocked().friends) list.append(FriendValueLocked(f));
  done(TIM_SUCC, "", WriteJson(list));
  return TIM_SUCC;
}

int Engine::AddFriend(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("friendship_add_friend_param_identifier");
  reader.Int64("friendship_add_friend_param_friend_type");
  std::string remark = reader.String("friendship_add_friend_param_remark");
  std::string source = reader.String("friendship_add_friend_param_add_source");
  std::string wording = reader.String("friendship_add_friend_param_add_wording");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty() || id.size() > TIM_MAX_ID_LENGTH) return TIM_ERR_INVALID_PARAM;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipAddFriend", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  int code = FriendRequestLocked(signed_in_, id, source, wording, remark);
  if (code == TIM_ERR_ACCOUNT_NOT_FOUND || code == TIM_ERR_INVALID_PARAM) {
    done(code, "cannot add this account", "");
  } else {
    done(TIM_SUCC, "", WriteJson(ResultEntry(id, code, FriendResultText(code))));
  }
  return TIM_SUCC;
}

int Engine::DeleteFriends(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  auto ids = reader.StringArray("friendship_delete_friend_param_identifier_array");
  int64_t type = reader.Int64("friendship_delete_friend_param_friend_type", 0);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (ids.empty()) return TIM_ERR_INVALID_PARAM;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipDeleteFriend", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  Json::Value results(Json::arrayValue);
  std::string self = signed_in_;
  for (const auto& id : ids) {
    bool removed = RemoveFriendLocked(self, id);
    if (removed && type == 1) RemoveFriendLocked(id, self);
    int code = removed ? TIM_SUCC : TIM_FRIEND_RESULT_NOT_FRIEND;
    results.append(ResultEntry(id, code, FriendResultText(code)));
  }
  done(TIM_SUCC, "", WriteJson(results));
  return TIM_SUCC;
}

int Engine::ModifyFriend(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("friendship_modify_friend_profile_param_identifier");
  const Json::Value& item = reader.Object("friendship_modify_friend_profile_param_item");
  ParamReader item_reader(item);
  bool has_remark = item_reader.Has("friend_profile_item_remark");
  std::string remark = item_reader.String("friend_profile_item_remark");
  bool has_groups = item_reader.Has("friend_profile_item_group_name_array");
  auto groups = item_reader.StringArray("friend_profile_item_group_name_array");
  if (!reader.ok() || !item_reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty()) return TIM_ERR_INVALID_PARAM;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipModifyFriendProfile", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  auto it = SelfLocked().friends.find(id);
  if (it == SelfLocked().friends.end()) {
    done(TIM_FRIEND_RESULT_NOT_FRIEND, "not a friend", "");
    return TIM_SUCC;
  }
  if (has_remark) it->second.remark = remark;
  if (has_groups) it->second.group_names = groups;
  ChangedLocked();
  done(TIM_SUCC, "", "");
  return TIM_SUCC;
}

int Engine::GetPendencies(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  int64_t type = reader.Int64("friendship_get_pendency_list_param_type", kTIMPendency_ComeIn);
  uint64_t start_seq = reader.UInt64("friendship_get_pendency_list_param_start_seq", 0);
  uint64_t start_time = reader.UInt64("friendship_get_pendency_list_param_start_time", 0);
  int64_t limit = reader.Int64("friendship_get_pendency_list_param_limited_size", 20);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (type < kTIMPendency_ComeIn || type > kTIMPendency_Both || limit < 1 || limit > 1000) {
    return TIM_ERR_INVALID_PARAM;
  }
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipGetPendencyList", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  const Account& self = SelfLocked();
  Json::Value entries(Json::arrayValue);
  uint64_t next_seq = 0;
  uint64_t unread = 0;
  for (auto it = self.pendencies.rbegin(); it != self.pendencies.rend(); ++it) {
    if (it->type == kTIMPendency_ComeIn && it->add_time > self.pendency_read_time) ++unread;
    if (type != kTIMPendency_Both && it->type != type) continue;
    if (it->add_time < start_time || (start_seq != 0 && it->seq > start_seq)) continue;
    if (static_cast<int64_t>(entries.size()) == limit) {
      if (next_seq == 0) next_seq = it->seq;
      continue;
    }
    entries.append(PendencyValueLocked(*it));
  }
  done(TIM_SUCC, "", WriteJson(PendencyPage(start_time, unread, next_seq, entries)));
  return TIM_SUCC;
}

int Engine::ReportPendenciesRead(uint64_t time_stamp, ResultFn done) {
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipReportPendencyReaded", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  Account& self = SelfLocked();
  self.pendency_read_time = std::max(self.pendency_read_time, time_stamp);
  ChangedLocked();
  done(TIM_SUCC, "", "");
  return TIM_SUCC;
}

int Engine::HandleFriendRequest(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("friend_respone_identifier");
  int64_t action = reader.Int64("friend_respone_action", 1);
  std::string remark = reader.String("friend_respone_remark");
  std::string group = reader.String("friend_respone_group_name");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty() || action < 0 || action > 2) return TIM_ERR_INVALID_PARAM;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMFriendshipHandleFriendAddRequest", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  int code = AnswerRequestLocked(signed_in_, id, static_cast<int>(action));
  if (code == TIM_SUCC && action == 1) {
    Friend& f = SelfLocked().friends[id];
    f.id = id;
    f.remark = remark;
    if (!group.empty()) f.group_names = {group};
  }
  if (code != TIM_SUCC) {
    done(code, FriendResultText(code), WriteJson(ResultEntry(id, code, FriendResultText(code))));
  } else {
    done(TIM_SUCC, "", WriteJson(ResultEntry(id, TIM_SUCC, "")));
  }
  return TIM_SUCC;
}

int Engine::GetProfiles(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  auto ids = reader.StringArray("friendship_getprofilelist_param_identifier_array");
  reader.Bool("friendship_getprofilelist_param_force_update");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMProfileGetUserProfileList", done)) return TIM_SUCC;
  Json::Value list(Json::arrayValue);
  for (const auto& id : ids) {
    if (const Account* a = FindAccountLocked(id)) list.append(ProfileValueLocked(*a));
  }
  done(TIM_SUCC, "", WriteJson(list));
  return TIM_SUCC;
}

int Engine::ModifySelfProfile(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  bool has_nick = reader.Has("user_profile_item_nick_name");
  std::string nick = reader.String("user_profile_item_nick_name");
  bool has_face = reader.Has("user_profile_item_face_url");
  std::string face = reader.String("user_profile_item_face_url");
  bool has_signature = reader.Has("user_profile_item_self_signature");
  std::string signature = reader.String("user_profile_item_self_signature");
  bool has_permission = reader.Has("user_profile_item_add_permission");
  int64_t permission = reader.Int64("user_profile_item_add_permission", 0);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (has_permission &&
      (permission < kTIMAddPermission_AllowAny || permission > kTIMAddPermission_DenyAny)) {
    return TIM_ERR_INVALID_PARAM;
  }
  std::lock_guard lock(mutex_);
  if (int code = CheckSessionLocked()) return code;
  if (QueuedFailureLocked("TIMProfileModifySelfUserProfile", done) || NetworkDownLocked(done)) {
    return TIM_SUCC;
  }
  Account& self = SelfLocked();
  if (has_nick) self.nick = nick;
  if (has_face) self.face_url = face;
  if (has_signature) self.self_signature = signature;
  if (has_permission) self.add_permission = static_cast<int>(permission);
  ChangedLocked();
  done(TIM_SUCC, "", WriteJson(ProfileValueLocked(self)));
  return TIM_SUCC;
}

}  // namespace imsdk

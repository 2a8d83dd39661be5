// Group requests on multi-user rooms: a group is a members-only persistent
// room at the configured room service, its id the room's local part; the
// groups an account belongs to are its room bookmarks.
#include <cstdlib>
#include <ctime>
#include <iterator>

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
namespace {

bool IsResult(xmpp_stanza_t* reply) {
  return reply != nullptr && AttrOf(reply, "type") == "result";
}

}  // namespace

std::string XmppBackend::GroupOf(const std::string& jid) const {
  if (DomainPart(jid) != config_.muc_domain) return "";
  return LocalPart(jid);
}

void XmppBackend::FetchBookmarks(std::function<void(bool ok)> then) {
  link_->SendIq(FetchBookmarksIq(link_->ctx()), [this, then](xmpp_stanza_t* reply) {
    if (reply == nullptr) return then(false);
    // No node yet: no groups.
    if (AttrOf(reply, "type") != "result") return then(ErrorCondition(reply) == "item-not-found");
    xmpp_stanza_t* items = ChildOf(ChildOf(reply, "pubsub", ns::kPubsub), "items");
    for (xmpp_stanza_t* item = ChildOf(items, "item"); item != nullptr;
         item = xmpp_stanza_get_next(item)) {
      const std::string group = GroupOf(AttrOf(item, "id"));
      if (NameOf(item) != "item" || group.empty()) continue;
      RoomState& room = rooms_[group];
      room.name = AttrOf(ChildOf(item, "conference", ns::kBookmarks), "name");
      room.create_time =
          std::strtoull(store_.Setting("room_created:" + group, "0").c_str(), nullptr, 10);
    }
    then(true);
  });
}

void XmppBackend::PublishBookmark(const std::string& group) {
  auto room = rooms_.find(group);
  if (room == rooms_.end()) return;
  if (store_.Setting("room_joined:" + group).empty()) {
    store_.SetSetting("room_joined:" + group, FormatStamp(Now()));
  }
  if (store_.Setting("room_created:" + group).empty()) {
    store_.SetSetting("room_created:" + group, std::to_string(room->second.create_time));
  }
  link_->SendIq(PublishBookmarkIq(link_->ctx(), RoomJid(group), room->second.name, user_),
                [this, group](xmpp_stanza_t* reply) {
                  if (!IsResult(reply))
                    Trace("the bookmark of group %s was not kept", group.c_str());
                });
}

void XmppBackend::ForgetRoom(const std::string& group) {
  auto room = rooms_.find(group);
  if (room == rooms_.end()) return;
  if (room->second.joined) {
    Stanza leave(link_->ctx(), "presence");
    leave.Attr("to", RoomJid(group) + "/" + user_).Attr("type", "unavailable");
    link_->Send(leave);
  }
  rooms_.erase(room);
  link_->SendIq(RetractBookmarkIq(link_->ctx(), RoomJid(group)), [this, group](xmpp_stanza_t* r) {
    if (!IsResult(r)) Trace("the bookmark of group %s was not removed", group.c_str());
  });
}

void XmppBackend::EnterRooms() {
  for (const auto& [group, room] : rooms_) {
    if (room.joined) continue;
    JoinRoom(group, [this, group = group](int code) {
      if (code == TIM_SUCC) return CatchUpRoom(group);
      Trace("cannot enter group %s: %d", group.c_str(), code);
    });
  }
}

void XmppBackend::JoinRoom(const std::string& group, std::function<void(int code)> then) {
  // Entering a room that is gone would create it anew: look first.
  link_->SendIq(DiscoInfoIq(link_->ctx(), RoomJid(group)),
                [this, group, then](xmpp_stanza_t* reply) {
                  auto room = rooms_.find(group);
                  if (room == rooms_.end()) return then(TIM_ERR_NOT_GROUP_MEMBER);
                  if (!IsResult(reply)) {
                    const int code = GroupFailureCode(reply);
                    if (code == TIM_ERR_GROUP_NOT_FOUND) {
                      // Disbanded while we were away.
                      PostGroupNotice(group, room->second.Owner(),
                                      RoomReportElem(kTIMGroupReport_Disband, group,
                                                     room->second.name, room->second.Owner()));
                      ForgetRoom(group);
                    }
                    return then(code);
                  }
                  room->second.name = RoomNameOf(reply);
                  link_->Send(JoinPresence(link_->ctx(), RoomJid(group), user_));
                  // The room answers presences and IQs in order: once the member list is
                  // here, so is the answer to the presence.
                  RefreshMembers(group, [this, group, then](int code) {
                    auto room = rooms_.find(group);
                    if (room == rooms_.end()) return then(TIM_ERR_NOT_GROUP_MEMBER);
                    if (code == TIM_SUCC && !room->second.joined) code = TIM_ERR_NOT_GROUP_MEMBER;
                    then(code);
                  });
                });
}

void XmppBackend::RefreshMembers(const std::string& group, std::function<void(int code)> then) {
  AskAffiliations(group, 0, std::make_shared<std::map<std::string, std::string>>(),
                  std::move(then));
}

void XmppBackend::AskAffiliations(const std::string& group, size_t step,
                                  std::shared_ptr<std::map<std::string, std::string>> found,
                                  std::function<void(int code)> then) {
  static const char* const kAffiliations[] = {"owner", "admin", "member"};
  if (step == std::size(kAffiliations)) {
    auto room = rooms_.find(group);
    if (room == rooms_.end()) return then(TIM_ERR_NOT_GROUP_MEMBER);
    room->second.affiliations = std::move(*found);
    return then(TIM_SUCC);
  }
  link_->SendIq(AffiliationListIq(link_->ctx(), RoomJid(group), kAffiliations[step]),
                [this, group, step, found, then](xmpp_stanza_t* reply) {
                  if (!IsResult(reply)) return then(GroupFailureCode(reply));
                  xmpp_stanza_t* query = ChildOf(reply, "query", ns::kMucAdmin);
                  for (xmpp_stanza_t* item = ChildOf(query, "item"); item != nullptr;
                       item = xmpp_stanza_get_next(item)) {
                    const std::string user = UserOf(AttrOf(item, "jid"));
                    if (NameOf(item) == "item" && !user.empty()) {
                      (*found)[user] = AttrOf(item, "affiliation");
                    }
                  }
                  AskAffiliations(group, step + 1, found, then);
                });
}

void XmppBackend::SetAffiliations(const std::string& group,
                                  std::vector<std::pair<std::string, std::string>> changes,
                                  std::shared_ptr<std::vector<int>> codes,
                                  std::function<void()> then) {
  if (codes->size() == changes.size()) return then();
  const auto& [user, affiliation] = changes[codes->size()];
  link_->SendIq(AffiliationIq(link_->ctx(), RoomJid(group), JidOf(user), affiliation),
                [this, group, changes, codes, then](xmpp_stanza_t* reply) {
                  codes->push_back(IsResult(reply) ? TIM_SUCC : GroupFailureCode(reply));
                  SetAffiliations(group, changes, codes, then);
                });
}

int XmppBackend::GetJoinedGroups(ResultFn done) {
  return WhenSignedIn([this, done] {
    Json::Value list(Json::arrayValue);
    for (const auto& [id, room] : rooms_) list.append(RoomGroupObject(id, room));
    done(TIM_SUCC, "", WriteJson(list));
  });
}

int XmppBackend::GetGroupInfos(const Json::Value& ids, ResultFn done) {
  std::vector<std::string> wanted;
  for (const auto& id : ids) {
    if (!id.isString()) return TIM_ERR_INVALID_JSON;
    wanted.push_back(id.asString());
  }
  return WhenSignedIn([this, wanted, done] {
    CollectGroupInfos(wanted, 0, std::make_shared<Json::Value>(Json::arrayValue), done);
  });
}

void XmppBackend::CollectGroupInfos(std::vector<std::string> wanted, size_t i,
                                    std::shared_ptr<Json::Value> out, ResultFn done) {
  while (i < wanted.size() && rooms_.count(wanted[i]) == 0) ++i;  // unknown ids left out
  if (i == wanted.size()) return done(TIM_SUCC, "", WriteJson(*out));
  const std::string group = wanted[i];
  RefreshMembers(group, [this, wanted, i, out, done](int) {
    auto room = rooms_.find(wanted[i]);
    if (room != rooms_.end()) {
      Json::Value value = RoomGroupObject(wanted[i], room->second);
      value["group_base_info_member_array"] = Json::Value(Json::arrayValue);
      for (const auto& [user, affiliation] : room->second.affiliations) {
        value["group_base_info_member_array"].append(RoomMemberObject(user, affiliation));
      }
      out->append(value);
    }
    CollectGroupInfos(wanted, i + 1, out, done);
  });
}

int XmppBackend::GetMembers(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const std::string group = reader.String("group_get_members_info_list_param_group_id");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return WhenSignedIn([this, group, done] {
    if (rooms_.count(group) == 0) return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member", "");
    RefreshMembers(group, [this, group, done](int code) {
      auto room = rooms_.find(group);
      if (code != TIM_SUCC || room == rooms_.end()) {
        return done(code == TIM_SUCC ? TIM_ERR_NOT_GROUP_MEMBER : code, "no member list", "");
      }
      Json::Value result(Json::objectValue);
      result["group_get_member_info_list_result_info_array"] = Json::Value(Json::arrayValue);
      for (const auto& [user, affiliation] : room->second.affiliations) {
        result["group_get_member_info_list_result_info_array"].append(
            RoomMemberObject(user, affiliation));
      }
      done(TIM_SUCC, "", WriteJson(result));
    });
  });
}

int XmppBackend::CreateGroup(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const std::string name = reader.String("create_group_param_group_name");
  std::string id = reader.String("create_group_param_group_id");
  const Json::Value& members = param["create_group_param_group_member_array"];
  std::vector<std::string> invitees;
  for (const auto& m : members) {
    if (!m.isObject() || !m["group_member_info_identifier"].isString()) return TIM_ERR_INVALID_JSON;
    invitees.push_back(m["group_member_info_identifier"].asString());
  }
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (!id.empty() && !IsValidLocalPart(id)) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, name, id, invitees, done]() mutable {
    if (id.empty()) id = "group-" + link_->NewId();
    link_->SendIq(DiscoInfoIq(link_->ctx(), RoomJid(id)), [this, name, id, invitees,
                                                           done](xmpp_stanza_t* reply) {
      if (reply == nullptr) return done(TIM_ERR_NETWORK, "the server did not answer", "");
      if (IsResult(reply)) return done(TIM_ERR_GROUP_EXISTS, "the group id is taken", "");
      RoomState& room = rooms_[id];
      room.name = name;
      room.create_time = Now();
      room.affiliations[user_] = "owner";
      link_->Send(JoinPresence(link_->ctx(), RoomJid(id), user_));
      Stanza config(link_->ctx(), "iq");
      config.Attr("type", "set")
          .Attr("to", RoomJid(id))
          .Add(RoomConfigForm(link_->ctx(), name, true));
      link_->SendIq(std::move(config), [this, id, invitees, done](xmpp_stanza_t* reply) {
        auto room = rooms_.find(id);
        if (!IsResult(reply) || room == rooms_.end() || !room->second.joined) {
          const int code = reply == nullptr ? TIM_ERR_NETWORK : GroupFailureCode(reply);
          rooms_.erase(id);
          return done(code == TIM_ERR_NETWORK ? code : TIM_ERR_GROUP_EXISTS,
                      "the room could not be made: " + ErrorCondition(reply), "");
        }
        PublishBookmark(id);
        PostGroupNotice(id, user_,
                        RoomTipElem(kTIMGroupTip_Invite, id, room->second, user_, {user_}, Now()));
        for (const auto& invitee : invitees) {
          if (invitee == user_ || !IsValidLocalPart(invitee)) continue;
          link_->Send(InvitationMessage(link_->ctx(), RoomJid(id), JidOf(invitee), link_->NewId()));
        }
        Json::Value result(Json::objectValue);
        result["create_group_result_groupid"] = id;
        done(TIM_SUCC, "", WriteJson(result));
      });
    });
  });
}

int XmppBackend::InviteMembers(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const std::string group = reader.String("group_invite_member_param_group_id");
  const std::vector<std::string> users =
      reader.StringArray("group_invite_member_param_identifier_array");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return WhenSignedIn([this, group, users, done] {
    auto room = rooms_.find(group);
    if (room == rooms_.end()) return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member", "");
    // A members-only room makes an invited account a member.
    auto ids = std::make_shared<std::map<std::string, std::string>>();
    for (const auto& user : users) {
      if (room->second.affiliations.count(user) > 0 || !IsValidLocalPart(user)) continue;
      const std::string id = link_->NewId();
      (*ids)[user] = id;
      link_->Send(InvitationMessage(link_->ctx(), RoomJid(group), JidOf(user), id));
    }
    Stanza ping(link_->ctx(), "iq");
    ping.Attr("type", "get").Attr("to", config_.domain);
    ping.Add(Stanza(link_->ctx(), "ping").Ns(ns::kPing));
    link_->SendIq(std::move(ping), [this, group, users, ids, done](xmpp_stanza_t* reply) {
      Json::Value results(Json::arrayValue);
      for (const auto& user : users) {
        Json::Value r(Json::objectValue);
        r["group_invite_member_result_identifier"] = user;
        auto id = ids->find(user);
        int outcome = 0;
        if (id == ids->end()) {
          outcome = IsValidLocalPart(user) ? 2 : 0;
        } else if (bounced_.erase(id->second) == 0 && reply != nullptr) {
          outcome = 1;
        }
        r["group_invite_member_result_result"] = outcome;
        results.append(r);
      }
      if (reply == nullptr) return done(TIM_ERR_NETWORK, "the server did not confirm it", "");
      done(TIM_SUCC, "", WriteJson(results));
    });
  });
}

int XmppBackend::RemoveMembers(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const std::string group = reader.String("group_delete_member_param_group_id");
  const std::vector<std::string> users =
      reader.StringArray("group_delete_member_param_identifier_array");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return WhenSignedIn([this, group, users, done] {
    auto room = rooms_.find(group);
    if (room == rooms_.end()) return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member", "");
    if (room->second.Owner() != user_) return done(TIM_ERR_GROUP_PERMISSION, "owner only", "");
    std::vector<std::pair<std::string, std::string>> changes;
    for (const auto& user : users) {
      if (room->second.affiliations.count(user) > 0 && user != user_)
        changes.push_back({user, "none"});
    }
    auto codes = std::make_shared<std::vector<int>>();
    SetAffiliations(group, changes, codes, [users, changes, codes, done] {
      Json::Value results(Json::arrayValue);
      for (const auto& user : users) {
        Json::Value r(Json::objectValue);
        r["group_delete_member_result_identifier"] = user;
        int outcome = 0;
        for (size_t i = 0; i < changes.size(); ++i) {
          if (changes[i].first == user && (*codes)[i] == TIM_SUCC) outcome = 1;
        }
        r["group_delete_member_result_result"] = outcome;
        results.append(r);
      }
      done(TIM_SUCC, "", WriteJson(results));
    });
  });
}

int XmppBackend::ModifyGroup(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const std::string group = reader.String("group_modify_info_param_group_id");
  const bool rename = reader.Has("group_modify_info_param_group_name");
  const std::string name = reader.String("group_modify_info_param_group_name");
  const std::string owner = reader.String("group_modify_info_param_owner");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  // A room has no picture of its own.
  if (reader.Has("group_modify_info_param_face_url")) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, group, rename, name, owner, done] {
    auto room = rooms_.find(group);
    if (room == rooms_.end()) return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member", "");
    // Only a room's owner may configure it or hand it on.
    if (room->second.Owner() != user_) return done(TIM_ERR_GROUP_PERMISSION, "owner only", "");
    if (!owner.empty() && room->second.affiliations.count(owner) == 0) {
      return done(TIM_ERR_NOT_GROUP_MEMBER, "the new owner is not a member", "");
    }
    auto transfer = [this, group, owner, done](int code) {
      if (code != TIM_SUCC || owner.empty() || owner == user_) {
        return done(code, code == TIM_SUCC ? "" : "the room refused the change", "");
      }
      // The new owner first: a room keeps at least one.
      auto codes = std::make_shared<std::vector<int>>();
      SetAffiliations(group, {{owner, "owner"}, {user_, "member"}}, codes, [codes, done] {
        const int code = (*codes)[0] != TIM_SUCC ? (*codes)[0] : (*codes)[1];
        done(code, code == TIM_SUCC ? "" : "the room refused the new owner", "");
      });
    };
    if (!rename) return transfer(TIM_SUCC);
    Stanza config(link_->ctx(), "iq");
    config.Attr("type", "set")
        .Attr("to", RoomJid(group))
        .Add(RoomConfigForm(link_->ctx(), name, false));
    link_->SendIq(std::move(config), [transfer](xmpp_stanza_t* reply) {
      transfer(IsResult(reply) ? TIM_SUCC : GroupFailureCode(reply));
    });
  });
}

int XmppBackend::QuitGroup(const std::string& group, ResultFn done) {
  return WhenSignedIn([this, group, done] {
    auto room = rooms_.find(group);
    if (room == rooms_.end()) return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member", "");
    if (room->second.Owner() == user_) {
      return done(TIM_ERR_GROUP_PERMISSION, "the owner transfers or disbands instead", "");
    }
    // Cancelling the registration ends the membership.
    Stanza iq(link_->ctx(), "iq");
    iq.Attr("type", "set").Attr("to", RoomJid(group));
    iq.Add(Stanza(link_->ctx(), "query").Ns(ns::kRegister).Add(Stanza(link_->ctx(), "remove")));
    link_->SendIq(std::move(iq), [this, group, done](xmpp_stanza_t* reply) {
      if (!IsResult(reply)) return done(GroupFailureCode(reply), "the room refused", "");
      ForgetRoom(group);
      done(TIM_SUCC, "", "");
    });
  });
}

int XmppBackend::DisbandGroup(const std::string& group, ResultFn done) {
  return WhenSignedIn([this, group, done] {
    auto room = rooms_.find(group);
    if (room == rooms_.end()) return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member", "");
    if (room->second.Owner() != user_) return done(TIM_ERR_GROUP_PERMISSION, "owner only", "");
    Stanza iq(link_->ctx(), "iq");
    iq.Attr("type", "set").Attr("to", RoomJid(group));
    iq.Add(Stanza(link_->ctx(), "query").Ns(ns::kMucOwner).Add(Stanza(link_->ctx(), "destroy")));
    link_->SendIq(std::move(iq), [this, group, done](xmpp_stanza_t* reply) {
      if (!IsResult(reply)) return done(GroupFailureCode(reply), "the room refused", "");
      done(TIM_SUCC, "", "");
    });
  });
}

}  // namespace imsdk::xmpp

// What rooms tell: occupants' presences and the room's notices become group
// tips in the group's conversation; invitations make us join.
#include <set>

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
namespace {

std::set<std::string> StatusCodes(xmpp_stanza_t* x) {
  std::set<std::string> codes;
  for (xmpp_stanza_t* c = x == nullptr ? nullptr : xmpp_stanza_get_children(x); c != nullptr;
       c = xmpp_stanza_get_next(c)) {
    if (NameOf(c) == "status") codes.insert(AttrOf(c, "code"));
  }
  return codes;
}

std::string NickOf(const std::string& occupant_jid) {
  const size_t slash = occupant_jid.find('/');
  return slash == std::string::npos ? "" : occupant_jid.substr(slash + 1);
}

bool IsMemberAffiliation(const std::string& affiliation) {
  return affiliation == "owner" || affiliation == "admin" || affiliation == "member";
}

}  // namespace

void XmppBackend::OnRoomPresence(xmpp_stanza_t* stanza) {
  const std::string from = AttrOf(stanza, "from");
  const std::string group = GroupOf(from);
  auto room = rooms_.find(group);
  if (room == rooms_.end()) return;
  const std::string nick = NickOf(from);
  const std::string type = AttrOf(stanza, "type");
  xmpp_stanza_t* x = ChildOf(stanza, "x", ns::kMucUser);
  xmpp_stanza_t* item = ChildOf(x, "item");
  const std::set<std::string> codes = StatusCodes(x);
  const std::string actor = AttrOf(ChildOf(item, "actor"), "nick");
  const bool self = codes.count("110") > 0 || nick == user_;
  if (type == "error") {
    Trace("group %s refused us: %s", group.c_str(), ErrorCondition(stanza).c_str());
    room->second.joined = false;
    return;
  }
  const std::string affiliation = AttrOf(item, "affiliation");
  if (self) {
    if (type != "unavailable") {
      // Once in, our own presence tells our changed affiliation.
      const bool was_in = room->second.joined;
      room->second.joined = true;
      if (was_in && !affiliation.empty()) ApplyAffiliation(group, user_, affiliation, actor);
      return;
    }
    room->second.joined = false;
    if (ChildOf(x, "destroy") != nullptr) {
      const std::string owner = room->second.Owner();
      PostGroupNotice(group, owner,
                      RoomReportElem(kTIMGroupReport_Disband, group, room->second.name, owner));
      ForgetRoom(group);
    } else if (codes.count("321") > 0 || codes.count("301") > 0) {
      // Without an actor the membership was given up (our own quit).
      ApplyAffiliation(group, user_, "none", actor.empty() ? user_ : actor);
    }
    return;
  }
  // The occupants listed while entering are no news; a destroyed room's
  // occupants are not removed members.
  if (!room->second.joined || ChildOf(x, "destroy") != nullptr || affiliation.empty()) return;
  std::string who = UserOf(AttrOf(item, "jid"));
  if (who.empty()) who = nick;  // our rooms' nicks are user ids
  const bool removed = !IsMemberAffiliation(affiliation);
  ApplyAffiliation(group, who, affiliation, removed && actor.empty() ? who : actor);
}

bool XmppBackend::OnRoomNotice(xmpp_stanza_t* stanza) {
  const std::string from = AttrOf(stanza, "from");
  const std::string group = GroupOf(from);
  xmpp_stanza_t* x = ChildOf(stanza, "x", ns::kMucUser);
  if (group.empty() || from.find('/') != std::string::npos || x == nullptr) return false;
  if (xmpp_stanza_t* invite = ChildOf(x, "invite")) {
    OnInvitation(group, UserOf(AttrOf(invite, "from")));
    return true;
  }
  if (rooms_.count(group) == 0) return true;
  if (StatusCodes(x).count("104") > 0) {
    // The configuration changed: the name is all a group shows of it.
    link_->SendIq(DiscoInfoIq(link_->ctx(), RoomJid(group)), [this, group](xmpp_stanza_t* reply) {
      auto room = rooms_.find(group);
      if (room == rooms_.end() || reply == nullptr || AttrOf(reply, "type") != "result") return;
      const std::string name = RoomNameOf(reply);
      if (name == room->second.name) return;
      room->second.name = name;
      PublishBookmark(group);
      const std::string owner = room->second.Owner();
      PostGroupNotice(group, owner, RoomChangeTipElem(group, room->second, owner, 1, name, Now()));
    });
  }
  // An affiliation change of someone not in the room.
  for (xmpp_stanza_t* item = ChildOf(x, "item"); item != nullptr;
       item = xmpp_stanza_get_next(item)) {
    const std::string who = UserOf(AttrOf(item, "jid"));
    if (NameOf(item) != "item" || who.empty()) continue;
    // Invitations give membership with the reason "Invited by <jid>".
    const std::string reason = ChildText(item, "reason");
    const std::string prefix = "Invited by ";
    std::string op;
    if (reason.rfind(prefix, 0) == 0) op = UserOf(BareJid(reason.substr(prefix.size())));
    ApplyAffiliation(group, who, AttrOf(item, "affiliation"), op);
  }
  return true;
}

void XmppBackend::OnInvitation(const std::string& group, const std::string& inviter) {
  if (rooms_.count(group) > 0) return;
  rooms_[group].create_time = Now();
  JoinRoom(group, [this, group, inviter](int code) {
    auto room = rooms_.find(group);
    if (code != TIM_SUCC || room == rooms_.end()) {
      Trace("cannot join group %s we were invited to: %d", group.c_str(), code);
      rooms_.erase(group);
      return;
    }
    PublishBookmark(group);
    PostGroupNotice(group, inviter,
                    RoomTipElem(kTIMGroupTip_Invite, group, room->second, inviter, {user_}, Now()));
  });
}

void XmppBackend::ApplyAffiliation(const std::string& group, const std::string& user,
                                   const std::string& affiliation, const std::string& op) {
  auto room = rooms_.find(group);
  if (room == rooms_.end() || user.empty()) return;
  auto& members = room->second.affiliations;
  auto it = members.find(user);
  const std::string before = it == members.end() ? "none" : it->second;
  const bool member_now = IsMemberAffiliation(affiliation);
  if (before == (member_now ? affiliation : std::string("none"))) return;
  const std::string owner = room->second.Owner();
  const std::string actor = op.empty() ? owner : op;
  if (member_now) {
    members[user] = affiliation;
  } else {
    members.erase(user);
  }
  if (before == "none") {
    PostGroupNotice(group, actor,
                    RoomTipElem(kTIMGroupTip_Invite, group, room->second, actor, {user}, Now()));
  } else if (!member_now) {
    const int tip = actor == user ? kTIMGroupTip_Quit : kTIMGroupTip_Kick;
    PostGroupNotice(group, actor, RoomTipElem(tip, group, room->second, actor, {user}, Now()));
    if (user == user_) ForgetRoom(group);
  } else if (affiliation == "owner") {
    PostGroupNotice(group, actor, RoomChangeTipElem(group, room->second, actor, 5, user, Now()));
  }
}

void XmppBackend::PostGroupNotice(const std::string& group, const std::string& op,
                                  const Json::Value& elem) {
  const uint64_t unique_id = Hash63("notice\n" + RoomJid(group) + "\n" + link_->NewId());
  Json::Value elems(Json::arrayValue);
  elems.append(elem);
  const bool mine = op == user_;
  Json::Value value = MessageValue(kTIMConv_Group, group, op, unique_id, Now(), mine, mine, elems);
  if (!batch_open_) {
    store_.Begin();
    batch_open_ = true;
  }
  store_.AddMessage(kTIMConv_Group, group, unique_id, "", Now(), mine, WriteJson(value));
  incoming_.append(value);
  // The tip's message first, then its event.
  FlushIncoming();
  if (elem["elem_type"].asInt() == kTIMElem_GroupTips) {
    Emit(Event{EventKind::kGroupTips, WriteJson(elem)});
  }
}

}  // namespace imsdk::xmpp

#include "imsdk/xmpp/group_codec.h"

#include "imsdk/api_objects.h"
#include "imsdk/im_sdk.h"

namespace imsdk::xmpp {
namespace {

Stanza Field(xmpp_ctx_t* ctx, const char* var, const std::string& value, const char* type = "") {
  Stanza field(ctx, "field");
  field.Attr("var", var);
  if (*type != '\0') field.Attr("type", type);
  field.AddText("value", value);
  return field;
}

Stanza SubmitForm(xmpp_ctx_t* ctx, const char* form_type) {
  Stanza form(ctx, "x");
  form.Ns(ns::kDataForm).Attr("type", "submit");
  form.Add(Field(ctx, "FORM_TYPE", form_type, "hidden"));
  return form;
}

Stanza Iq(xmpp_ctx_t* ctx, const char* type, const std::string& to = "") {
  Stanza iq(ctx, "iq");
  iq.Attr("type", type);
  if (!to.empty()) iq.Attr("to", to);
  return iq;
}

Json::Value Brief(const std::string& user) {
  // Rooms know their members by user id only.
  return BriefProfileObject(user, "", "");
}

GroupFields FieldsOf(const std::string& id, const RoomState& room) {
  GroupFields fields;
  fields.id = id;
  fields.name = room.name;
  fields.owner = room.Owner();
  fields.member_num = room.affiliations.size();
  fields.create_time = room.create_time;
  return fields;
}

}  // namespace

std::string RoomState::Owner() const {
  for (const auto& [user, affiliation] : affiliations) {
    if (affiliation == "owner") return user;
  }
  return "";
}

Stanza RoomConfigForm(xmpp_ctx_t* ctx, const std::string& name, bool full) {
  Stanza form = SubmitForm(ctx, "http://jabber.org/protocol/muc#roomconfig");
  form.Add(Field(ctx, "muc#roomconfig_roomname", name));
  if (full) {
    // Members only, kept when empty, archived; members see each other's
    // accounts (a member id is the account) and may invite.
    form.Add(Field(ctx, "muc#roomconfig_persistentroom", "1"));
    form.Add(Field(ctx, "muc#roomconfig_membersonly", "1"));
    form.Add(Field(ctx, "muc#roomconfig_publicroom", "0"));
    form.Add(Field(ctx, "muc#roomconfig_whois", "anyone"));
    form.Add(Field(ctx, "muc#roomconfig_allowinvites", "1"));
    form.Add(Field(ctx, "muc#roomconfig_enablearchiving", "1"));
    form.Add(Field(ctx, "muc#roomconfig_changesubject", "0"));
  }
  Stanza query(ctx, "query");
  query.Ns(ns::kMucOwner).Add(form);
  return query;
}

Stanza JoinPresence(xmpp_ctx_t* ctx, const std::string& room_jid, const std::string& nick) {
  Stanza presence(ctx, "presence");
  presence.Attr("to", room_jid + "/" + nick);
  Stanza history(ctx, "history");
  history.Attr("maxstanzas", "0");
  presence.Add(Stanza(ctx, "x").Ns(ns::kMuc).Add(history));
  return presence;
}

Stanza AffiliationIq(xmpp_ctx_t* ctx, const std::string& room_jid, const std::string& jid,
                     const std::string& affiliation) {
  Stanza item(ctx, "item");
  item.Attr("jid", jid).Attr("affiliation", affiliation);
  Stanza iq = Iq(ctx, "set", room_jid);
  iq.Add(Stanza(ctx, "query").Ns(ns::kMucAdmin).Add(item));
  return iq;
}

Stanza AffiliationListIq(xmpp_ctx_t* ctx, const std::string& room_jid,
                         const std::string& affiliation) {
  Stanza item(ctx, "item");
  item.Attr("affiliation", affiliation);
  Stanza iq = Iq(ctx, "get", room_jid);
  iq.Add(Stanza(ctx, "query").Ns(ns::kMucAdmin).Add(item));
  return iq;
}

Stanza InvitationMessage(xmpp_ctx_t* ctx, const std::string& room_jid,
                         const std::string& invitee_jid, const std::string& id) {
  Stanza invite(ctx, "invite");
  invite.Attr("to", invitee_jid);
  Stanza message(ctx, "message");
  message.Attr("to", room_jid).Attr("id", id);
  message.Add(Stanza(ctx, "x").Ns(ns::kMucUser).Add(invite));
  return message;
}

Stanza DiscoInfoIq(xmpp_ctx_t* ctx, const std::string& jid) {
  Stanza iq = Iq(ctx, "get", jid);
  iq.Add(Stanza(ctx, "query").Ns(ns::kDiscoInfo));
  return iq;
}

std::string RoomNameOf(xmpp_stanza_t* disco_reply) {
  xmpp_stanza_t* query = ChildOf(disco_reply, "query", ns::kDiscoInfo);
  return AttrOf(ChildOf(query, "identity"), "name");
}

Stanza PublishBookmarkIq(xmpp_ctx_t* ctx, const std::string& room_jid, const std::string& name,
                         const std::string& nick) {
  Stanza conference(ctx, "conference");
  conference.Ns(ns::kBookmarks).Attr("autojoin", "true").Attr("name", name).AddText("nick", nick);
  Stanza item(ctx, "item");
  item.Attr("id", room_jid).Add(conference);
  Stanza publish(ctx, "publish");
  publish.Attr("node", ns::kBookmarks).Add(item);
  // Private to the account and kept: the list of groups this account is in.
  Stanza options = SubmitForm(ctx, "http://jabber.org/protocol/pubsub#publish-options");
  options.Add(Field(ctx, "pubsub#persist_items", "true"));
  options.Add(Field(ctx, "pubsub#max_items", "max"));
  options.Add(Field(ctx, "pubsub#send_last_published_item", "never"));
  options.Add(Field(ctx, "pubsub#access_model", "whitelist"));
  Stanza pubsub(ctx, "pubsub");
  pubsub.Ns(ns::kPubsub).Add(publish).Add(Stanza(ctx, "publish-options").Add(options));
  Stanza iq = Iq(ctx, "set");
  iq.Add(pubsub);
  return iq;
}

Stanza RetractBookmarkIq(xmpp_ctx_t* ctx, const std::string& room_jid) {
  Stanza retract(ctx, "retract");
  retract.Attr("node", ns::kBookmarks).Attr("notify", "true");
  retract.Add(Stanza(ctx, "item").Attr("id", room_jid));
  Stanza iq = Iq(ctx, "set");
  iq.Add(Stanza(ctx, "pubsub").Ns(ns::kPubsub).Add(retract));
  return iq;
}

Stanza FetchBookmarksIq(xmpp_ctx_t* ctx) {
  Stanza items(ctx, "items");
  items.Attr("node", ns::kBookmarks);
  Stanza iq = Iq(ctx, "get");
  iq.Add(Stanza(ctx, "pubsub").Ns(ns::kPubsub).Add(items));
  return iq;
}

int GroupFailureCode(xmpp_stanza_t* reply) {
  if (reply == nullptr) return TIM_ERR_NETWORK;
  const std::string condition = ErrorCondition(reply);
  if (condition == "item-not-found" || condition == "gone") return TIM_ERR_GROUP_NOT_FOUND;
  if (condition == "registration-required") return TIM_ERR_NOT_GROUP_MEMBER;
  if (condition == "forbidden" || condition == "not-allowed" || condition == "conflict" ||
      condition == "not-authorized") {
    return TIM_ERR_GROUP_PERMISSION;
  }
  return TIM_ERR_NETWORK;
}

int MemberRole(const std::string& affiliation) {
  return affiliation == "owner" ? 3 : 1;
}

Json::Value RoomMemberObject(const std::string& user, const std::string& affiliation) {
  return GroupMemberObject(user, 0, MemberRole(affiliation));
}

Json::Value RoomGroupObject(const std::string& id, const RoomState& room) {
  return GroupBaseObject(FieldsOf(id, room));
}

Json::Value RoomTipElem(int tip_type, const std::string& group_id, const RoomState& room,
                        const std::string& op_user, const std::vector<std::string>& users,
                        uint64_t time) {
  return GroupTipElem(tip_type, FieldsOf(group_id, room), op_user, users, time, Brief,
                      [&room](const std::string& user) {
                        auto it = room.affiliations.find(user);
                        if (it == room.affiliations.end()) return Json::Value();
                        return RoomMemberObject(user, it->second);
                      });
}

Json::Value RoomChangeTipElem(const std::string& group_id, const RoomState& room,
                              const std::string& op_user, int flag, const std::string& value,
                              uint64_t time) {
  Json::Value e = RoomTipElem(kTIMGroupTip_InfoChange, group_id, room, op_user, {}, time);
  e["group_tips_elem_group_change_info_array"].append(GroupChangeInfo(flag, value));
  return e;
}

Json::Value RoomReportElem(int report_type, const std::string& group_id, const std::string& name,
                           const std::string& op_user) {
  return GroupReportElem(report_type, group_id, name, op_user, Brief(op_user));
}

}  // namespace imsdk::xmpp

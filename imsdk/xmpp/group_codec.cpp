#include "imsdk/xmpp/group_codec.h"

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
  Json::Value v(Json::objectValue);
  v["user_profile_identifier"] = user;
  v["user_profile_nick_name"] = "";
  v["user_profile_face_url"] = "";
  return v;
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

Json::Value MemberObject(const std::string& user, const std::string& affiliation) {
  Json::Value v(Json::objectValue);
  v["group_member_info_identifier"] = user;
  v["group_member_info_join_time"] = 0;
  v["group_member_info_member_role"] = MemberRole(affiliation);
  v["group_member_info_msg_flag"] = 0;
  v["group_member_info_msg_seq"] = 0;
  v["group_member_info_shutup_time"] = 0;
  v["group_member_info_name_card"] = "";
  v["group_member_info_custom_info"] = Json::Value(Json::arrayValue);
  return v;
}

Json::Value GroupObject(const std::string& id, const RoomState& room) {
  Json::Value v(Json::objectValue);
  v["group_base_info_group_id"] = id;
  v["group_base_info_group_name"] = room.name;
  v["group_base_info_group_type"] = 0;
  v["group_base_info_face_url"] = "";
  v["group_base_info_owner_identifier"] = room.Owner();
  v["group_base_info_member_num"] = static_cast<Json::UInt>(room.affiliations.size());
  v["group_base_info_create_time"] = Json::UInt64(room.create_time);
  return v;
}

Json::Value GroupTipElem(int tip_type, const std::string& group_id, const RoomState& room,
                         const std::string& op_user, const std::vector<std::string>& users,
                         uint64_t time) {
  auto affiliation_of = [&room](const std::string& user) {
    auto it = room.affiliations.find(user);
    return it == room.affiliations.end() ? std::string("member") : it->second;
  };
  Json::Value e(Json::objectValue);
  e["elem_type"] = kTIMElem_GroupTips;
  e["group_tips_elem_tip_type"] = tip_type;
  e["group_tips_elem_op_user"] = op_user;
  e["group_tips_elem_group_name"] = room.name;
  e["group_tips_elem_group_id"] = group_id;
  e["group_tips_elem_time"] = Json::UInt64(time);
  Json::Value user_array(Json::arrayValue), changed(Json::arrayValue),
      changed_members(Json::arrayValue);
  for (const auto& user : users) {
    user_array.append(user);
    changed.append(Brief(user));
    changed_members.append(MemberObject(user, affiliation_of(user)));
  }
  e["group_tips_elem_user_array"] = user_array;
  e["group_tips_elem_group_change_info_array"] = Json::Value(Json::arrayValue);
  e["group_tips_elem_member_change_info_array"] = Json::Value(Json::arrayValue);
  e["group_tips_elem_op_user_info"] = Brief(op_user);
  e["group_tips_elem_changed_user_info_array"] = changed;
  e["group_tips_elem_op_group_memberinfo"] = op_user.empty()
                                                 ? Json::Value(Json::objectValue)
                                                 : MemberObject(op_user, affiliation_of(op_user));
  e["group_tips_elem_changed_group_memberinfo_array"] = changed_members;
  e["group_tips_elem_member_num"] = static_cast<Json::UInt>(room.affiliations.size());
  e["group_tips_elem_platform"] = "";
  return e;
}

Json::Value GroupChangeTipElem(const std::string& group_id, const RoomState& room,
                               const std::string& op_user, int flag, const std::string& value,
                               uint64_t time) {
  Json::Value e = GroupTipElem(kTIMGroupTip_InfoChange, group_id, room, op_user, {}, time);
  Json::Value change(Json::objectValue);
  change["group_tips_group_change_info_flag"] = flag;
  change["group_tips_group_change_info_value"] = value;
  change["group_tips_group_change_info_key"] = "";
  e["group_tips_elem_group_change_info_array"].append(change);
  return e;
}

Json::Value GroupReportElem(int report_type, const std::string& group_id, const std::string& name,
                            const std::string& op_user) {
  Json::Value e(Json::objectValue);
  e["elem_type"] = kTIMElem_GroupReport;
  e["group_report_elem_report_type"] = report_type;
  e["group_report_elem_group_id"] = group_id;
  e["group_report_elem_group_name"] = name;
  e["group_report_elem_op_user"] = op_user;
  e["group_report_elem_op_user_info"] = Brief(op_user);
  return e;
}

}  // namespace imsdk::xmpp

// Friends as the roster (a mutual subscription makes a friend), friend
// requests as subscription requests (kept locally: servers only re-deliver
// them), profiles as vCards.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "imsdk/api_objects.h"
#include "imsdk/friend_results.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
namespace {

constexpr const char* kProfileNs = "urn:x-imsdk:profile:0";
constexpr const char* kAddPermissionKey = "add_permission";
constexpr const char* kRequestsReadKey = "requests_read_time";
constexpr const char* kProfileVersionKey = "profile_version";

ProfileFields FieldsOf(const std::string& id) {
  ProfileFields fields;
  fields.id = id;
  return fields;
}

// A number kept in the settings; a damaged value reads as `fallback`.
uint64_t Number(const std::string& text, uint64_t fallback) {
  char* end = nullptr;
  errno = 0;
  unsigned long long value = std::strtoull(text.c_str(), &end, 10);
  if (text.empty() || errno != 0 || end == nullptr || *end != '\0') return fallback;
  return value;
}

}  // namespace

// ---- Roster ----

void XmppBackend::FetchRoster(std::function<void(bool ok)> then) {
  Stanza iq(link_->ctx(), "iq");
  iq.Attr("type", "get").Add(Stanza(link_->ctx(), "query").Ns(ns::kRoster));
  link_->SendIq(std::move(iq), [this, then](xmpp_stanza_t* reply) {
    if (reply == nullptr || AttrOf(reply, "type") != "result") return then(false);
    // After a reconnection the differences are what changed meanwhile.
    std::map<std::string, RosterItem> before = std::move(roster_);
    roster_.clear();
    Json::Value added(Json::arrayValue), removed(Json::arrayValue);
    xmpp_stanza_t* query = ChildOf(reply, "query", ns::kRoster);
    for (xmpp_stanza_t* item = ChildOf(query, "item"); item != nullptr;
         item = xmpp_stanza_get_next(item)) {
      if (NameOf(item) == "item") ApplyRosterItem(item, nullptr, nullptr);
    }
    if (phase_.load() == kSignedIn) {
      for (const auto& [id, item] : roster_) {
        auto old = before.find(id);
        if (item.IsFriend() && (old == before.end() || !old->second.IsFriend())) added.append(id);
      }
      for (const auto& [id, item] : before) {
        auto now = roster_.find(id);
        if (item.IsFriend() && (now == roster_.end() || !now->second.IsFriend())) {
          removed.append(id);
        }
      }
      if (!added.empty()) Emit(Event{EventKind::kFriendsAdded, WriteJson(added)});
      if (!removed.empty()) Emit(Event{EventKind::kFriendsDeleted, WriteJson(removed)});
    }
    then(true);
  });
}

void XmppBackend::ApplyRosterItem(xmpp_stanza_t* item, Json::Value* added, Json::Value* removed) {
  const std::string id = UserOf(AttrOf(item, "jid"));
  if (id.empty()) return;  // contacts of other domains have no user id here
  const bool was_friend = roster_.count(id) > 0 && roster_[id].IsFriend();
  const std::string subscription = AttrOf(item, "subscription");
  if (subscription == "remove") {
    roster_.erase(id);
  } else {
    RosterItem& entry = roster_[id];
    entry.name = AttrOf(item, "name");
    entry.subscription = subscription.empty() ? "none" : subscription;
    entry.asking = AttrOf(item, "ask") == "subscribe";
    entry.groups.clear();
    for (xmpp_stanza_t* g = xmpp_stanza_get_children(item); g != nullptr;
         g = xmpp_stanza_get_next(g)) {
      if (NameOf(g) == "group") entry.groups.push_back(TextOf(g));
    }
  }
  const bool is_friend = roster_.count(id) > 0 && roster_[id].IsFriend();
  if (is_friend) store_.RemoveRequest(id);
  if (is_friend && !was_friend && added != nullptr) added->append(id);
  if (!is_friend && was_friend && removed != nullptr) removed->append(id);
}

void XmppBackend::OnRosterPush(xmpp_stanza_t* iq) {
  const std::string from = AttrOf(iq, "from");
  // Only our own server may change our roster (RFC 6121 2.1.6).
  if (!from.empty() && BareJid(from) != self_jid_) {
    Trace("a roster push from %s ignored", from.c_str());
    return;
  }
  Json::Value added(Json::arrayValue), removed(Json::arrayValue);
  xmpp_stanza_t* query = ChildOf(iq, "query", ns::kRoster);
  for (xmpp_stanza_t* item = ChildOf(query, "item"); item != nullptr;
       item = xmpp_stanza_get_next(item)) {
    if (NameOf(item) == "item") ApplyRosterItem(item, &added, &removed);
  }
  xmpp_stanza_t* reply = xmpp_stanza_reply(iq);
  if (reply != nullptr) {
    xmpp_stanza_set_type(reply, "result");
    link_->Send(Stanza::Adopt(reply));
  }
  if (phase_.load() != kSignedIn) return;
  if (!added.empty()) Emit(Event{EventKind::kFriendsAdded, WriteJson(added)});
  if (!removed.empty()) Emit(Event{EventKind::kFriendsDeleted, WriteJson(removed)});
}

void XmppBackend::SetRosterItem(const std::string& peer, const std::string& name,
                                const std::vector<std::string>& groups,
                                std::function<void(bool)> then) {
  xmpp_ctx_t* ctx = link_->ctx();
  Stanza item(ctx, "item");
  item.Attr("jid", JidOf(peer));
  if (!name.empty()) item.Attr("name", name);
  for (const auto& g : groups) item.AddText("group", g);
  Stanza iq(ctx, "iq");
  iq.Attr("type", "set").Add(Stanza(ctx, "query").Ns(ns::kRoster).Add(item));
  link_->SendIq(std::move(iq), [then](xmpp_stanza_t* reply) {
    then(reply != nullptr && AttrOf(reply, "type") == "result");
  });
}

void XmppBackend::SendPresence(const std::string& to, const char* type, const std::string& status) {
  Stanza presence(link_->ctx(), "presence");
  presence.Attr("to", JidOf(to)).Attr("type", type);
  if (!status.empty()) presence.AddText("status", status);
  link_->Send(presence);
}

// ---- Presence: requests and profile changes ----

void XmppBackend::OnPresence(xmpp_stanza_t* stanza) {
  const std::string peer = UserOf(AttrOf(stanza, "from"));
  if (peer.empty() || peer == user_) return;
  const std::string type = AttrOf(stanza, "type");
  if (type == "subscribe") {
    OnSubscribeRequest(peer, ChildText(stanza, "status"));
  } else if (type == "unsubscribe") {
    store_.RemoveRequest(peer);  // withdrawn
  } else if (type.empty()) {
    xmpp_stanza_t* mark = ChildOf(stanza, "profile", kProfileNs);
    auto it = roster_.find(peer);
    if (mark == nullptr || it == roster_.end() || !it->second.IsFriend()) return;
    const std::string version = AttrOf(mark, "version");
    std::string& known = profile_versions_[peer];
    if (known == version) return;
    const bool first = known.empty();
    known = version;
    if (first) return;  // the first presence of a session is no change
    auto out = std::make_shared<Json::Value>(Json::arrayValue);
    FetchProfiles({peer}, out, [this, peer](int code, const std::string&, const std::string& json) {
      Json::Value profiles;
      if (code != TIM_SUCC || !ParseJson(json, &profiles) || profiles.empty()) return;
      Json::Value update(Json::objectValue);
      update["friend_profile_update_identifier"] = peer;
      update["friend_profile_update_item"]["friend_profile_item_nick_name"] =
          profiles[0]["user_profile_nick_name"];
      update["friend_profile_update_item"]["friend_profile_item_face_url"] =
          profiles[0]["user_profile_face_url"];
      Json::Value array(Json::arrayValue);
      array.append(update);
      Emit(Event{EventKind::kFriendProfileUpdated, WriteJson(array)});
    });
  }
}

void XmppBackend::OnSubscribeRequest(const std::string& peer, const std::string& wording) {
  auto it = roster_.find(peer);
  const bool known = it != roster_.end();
  // Our own request answered with theirs, or already friends: approve.
  if (known &&
      (it->second.asking || it->second.subscription == "to" || it->second.subscription == "both")) {
    SendPresence(peer, "subscribed");
    return;
  }
  const int permission = static_cast<int>(Number(store_.Setting(kAddPermissionKey), 2));
  if (permission == kTIMAddPermission_AllowAny) {
    SendPresence(peer, "subscribed");
    SendPresence(peer, "subscribe");
    return;
  }
  if (permission == kTIMAddPermission_DenyAny) {
    SendPresence(peer, "unsubscribed");
    return;
  }
  for (const auto& request : store_.Requests()) {
    if (request.peer == peer) return;  // the server re-delivers at each sign-in
  }
  store_.AddRequest(peer, Now(), wording, "");
  Json::Value array(Json::arrayValue);
  array.append(RequestValue(store_.Requests().front()));
  Emit(Event{EventKind::kFriendRequests, WriteJson(array)});
}

// ---- Values ----

Json::Value XmppBackend::FriendValue(const std::string& id, const RosterItem& item) const {
  Json::Value v(Json::objectValue);
  v["friend_profile_identifier"] = id;
  Json::Value groups(Json::arrayValue);
  for (const auto& g : item.groups) groups.append(g);
  v["friend_profile_group_name_array"] = groups;
  v["friend_profile_remark"] = item.name;
  v["friend_profile_add_wording"] = "";
  v["friend_profile_add_source"] = "";
  v["friend_profile_add_time"] = 0;
  auto cached = profiles_.find(id);
  v["friend_profile_user_profile"] =
      cached != profiles_.end() ? cached->second : ProfileObject(FieldsOf(id));
  v["friend_profile_custom_string_array"] = Json::Value(Json::arrayValue);
  return v;
}

Json::Value XmppBackend::RequestValue(const StoredRequest& request) const {
  Json::Value v(Json::objectValue);
  v["friend_add_pendency_info_type"] = kTIMPendency_ComeIn;
  v["friend_add_pendency_info_idenitifer"] = request.peer;
  v["friend_add_pendency_info_nick_name"] = "";
  v["friend_add_pendency_info_add_time"] = Json::UInt64(request.add_time);
  v["friend_add_pendency_info_add_source"] = request.source;
  v["friend_add_pendency_info_add_wording"] = request.wording;
  return v;
}

// ---- Friend requests ----

int XmppBackend::GetFriends(ResultFn done) {
  return WhenSignedIn([this, done] {
    Json::Value list(Json::arrayValue);
    for (const auto& [id, item] : roster_) {
      if (item.IsFriend()) list.append(FriendValue(id, item));
    }
    done(TIM_SUCC, "", WriteJson(list));
  });
}

int XmppBackend::AddFriend(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("friendship_add_friend_param_identifier");
  reader.Int64("friendship_add_friend_param_friend_type");
  std::string remark = reader.String("friendship_add_friend_param_remark");
  reader.String("friendship_add_friend_param_add_source");
  std::string wording = reader.String("friendship_add_friend_param_add_wording");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty() || id.size() > TIM_MAX_ID_LENGTH) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, id, remark, wording, done] {
    if (!IsValidLocalPart(id) || id == user_) {
      return done(TIM_ERR_ACCOUNT_NOT_FOUND, "cannot add this account", "");
    }
    auto it = roster_.find(id);
    if (it != roster_.end() && it->second.IsFriend()) {
      const int code = TIM_FRIEND_RESULT_ALREADY_FRIEND;
      return done(TIM_SUCC, "", WriteJson(ResultEntry(id, code, FriendResultText(code))));
    }
    const bool they_asked = store_.RemoveRequest(id);
    std::vector<std::string> groups;
    if (it != roster_.end()) groups = it->second.groups;
    SetRosterItem(id, remark, groups, [this, id, wording, they_asked, done](bool ok) {
      if (!ok) return done(TIM_ERR_NETWORK, "the server did not take the contact", "");
      // Asking back someone who asked us accepts their request as well.
      if (they_asked) SendPresence(id, "subscribed");
      SendPresence(id, "subscribe", wording);
      const int code = TIM_FRIEND_RESULT_PENDING;
      done(TIM_SUCC, "", WriteJson(ResultEntry(id, code, FriendResultText(code))));
    });
  });
}

int XmppBackend::DeleteFriends(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  auto ids = reader.StringArray("friendship_delete_friend_param_identifier_array");
  const int64_t type = reader.Int64("friendship_delete_friend_param_friend_type", 1);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return WhenSignedIn([this, ids, type, done] {
    Json::Value results(Json::arrayValue);
    for (const auto& id : ids) {
      auto it = roster_.find(id);
      const bool listed = it != roster_.end() && it->second.IsFriend();
      const int code = listed ? TIM_SUCC : TIM_FRIEND_RESULT_NOT_FRIEND;
      results.append(ResultEntry(id, code, FriendResultText(code)));
      if (!listed) continue;
      if (type == 0) {
        // Only from my list: I stop following them, they still list me.
        SendPresence(id, "unsubscribe");
      } else {
        Stanza item(link_->ctx(), "item");
        item.Attr("jid", JidOf(id)).Attr("subscription", "remove");
        Stanza iq(link_->ctx(), "iq");
        iq.Attr("type", "set").Add(Stanza(link_->ctx(), "query").Ns(ns::kRoster).Add(item));
        link_->SendIq(std::move(iq), [](xmpp_stanza_t*) {});
      }
    }
    done(TIM_SUCC, "", WriteJson(results));
  });
}

int XmppBackend::ModifyFriend(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("friendship_modify_friend_profile_param_identifier");
  const Json::Value& item = reader.Object("friendship_modify_friend_profile_param_item");
  ParamReader item_reader(item);
  const bool has_remark = item_reader.Has("friend_profile_item_remark");
  std::string remark = item_reader.String("friend_profile_item_remark");
  const bool has_groups = item_reader.Has("friend_profile_item_group_name_array");
  auto groups = item_reader.StringArray("friend_profile_item_group_name_array");
  if (!reader.ok() || !item_reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty()) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, id, has_remark, remark, has_groups, groups, done] {
    auto it = roster_.find(id);
    if (it == roster_.end() || !it->second.IsFriend()) {
      return done(TIM_FRIEND_RESULT_NOT_FRIEND, "not a friend", "");
    }
    SetRosterItem(id, has_remark ? remark : it->second.name,
                  has_groups ? groups : it->second.groups, [done](bool ok) {
                    if (!ok) return done(TIM_ERR_NETWORK, "the server did not take it", "");
                    done(TIM_SUCC, "", "");
                  });
  });
}

int XmppBackend::GetPendencies(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  const int64_t type = reader.Int64("friendship_get_pendency_list_param_type", kTIMPendency_ComeIn);
  const uint64_t start_seq = reader.UInt64("friendship_get_pendency_list_param_start_seq", 0);
  const uint64_t start_time = reader.UInt64("friendship_get_pendency_list_param_start_time", 0);
  const int64_t limit = reader.Int64("friendship_get_pendency_list_param_limited_size", 20);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (type < kTIMPendency_ComeIn || type > kTIMPendency_Both || limit < 1 || limit > 1000) {
    return TIM_ERR_INVALID_PARAM;
  }
  return WhenSignedIn([this, type, start_seq, start_time, limit, done] {
    const uint64_t read_time = Number(store_.Setting(kRequestsReadKey), 0);
    Json::Value entries(Json::arrayValue);
    uint64_t next_seq = 0, unread = 0;
    for (const auto& request : store_.Requests()) {
      if (request.add_time > read_time) ++unread;
      if (type == kTIMPendency_SendOut) break;
      if (request.add_time < start_time || (start_seq != 0 && request.seq > start_seq)) continue;
      if (static_cast<int64_t>(entries.size()) == limit) {
        if (next_seq == 0) next_seq = request.seq;
        continue;
      }
      entries.append(RequestValue(request));
    }
    // Our own requests are the roster's asking items; they have no sequence.
    if (type != kTIMPendency_ComeIn && start_seq == 0) {
      for (const auto& [id, item] : roster_) {
        if (!item.asking || static_cast<int64_t>(entries.size()) >= limit) continue;
        StoredRequest outgoing;
        outgoing.peer = id;
        Json::Value v = RequestValue(outgoing);
        v["friend_add_pendency_info_type"] = kTIMPendency_SendOut;
        entries.append(v);
      }
    }
    done(TIM_SUCC, "", WriteJson(PendencyPage(start_time, unread, next_seq, entries)));
  });
}

int XmppBackend::ReportPendenciesRead(uint64_t time_stamp, ResultFn done) {
  return WhenSignedIn([this, time_stamp, done] {
    const uint64_t before = Number(store_.Setting(kRequestsReadKey), 0);
    store_.SetSetting(kRequestsReadKey, std::to_string(std::max(before, time_stamp)));
    done(TIM_SUCC, "", "");
  });
}

int XmppBackend::HandleFriendRequest(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  std::string id = reader.String("friend_respone_identifier");
  const int64_t action = reader.Int64("friend_respone_action", 1);
  std::string remark = reader.String("friend_respone_remark");
  std::string group = reader.String("friend_respone_group_name");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (id.empty() || action < 0 || action > 2) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, id, action, remark, group, done] {
    if (!store_.RemoveRequest(id)) {
      const int code = TIM_ERR_PENDENCY_NOT_FOUND;
      return done(code, FriendResultText(code),
                  WriteJson(ResultEntry(id, code, FriendResultText(code))));
    }
    if (action == 2) {
      SendPresence(id, "unsubscribed");
    } else {
      SendPresence(id, "subscribed");
      if (action == 1) {
        std::vector<std::string> groups;
        if (!group.empty()) groups.push_back(group);
        SetRosterItem(id, remark, groups, [](bool) {});
        SendPresence(id, "subscribe");
      }
    }
    done(TIM_SUCC, "", WriteJson(ResultEntry(id, TIM_SUCC, "")));
  });
}

// ---- Profiles (vCards) ----

Json::Value XmppBackend::ProfileFromVCard(const std::string& id, xmpp_stanza_t* vcard) const {
  ProfileFields fields = FieldsOf(id);
  fields.nick = ChildText(vcard, "NICKNAME");
  if (fields.nick.empty()) fields.nick = ChildText(vcard, "FN");
  fields.face_url = ChildText(ChildOf(vcard, "PHOTO"), "EXTVAL");
  fields.self_signature = ChildText(vcard, "DESC");
  // Servers that keep vCards as vCard4 give the description back as a note.
  if (fields.self_signature.empty()) fields.self_signature = ChildText(vcard, "NOTE");
  fields.add_permission = kTIMAddPermission_NeedConfirm;
  return ProfileObject(fields);
}

void XmppBackend::FetchProfiles(std::vector<std::string> ids, std::shared_ptr<Json::Value> out,
                                ResultFn done) {
  if (ids.empty()) return done(TIM_SUCC, "", WriteJson(*out));
  const std::string id = ids.front();
  ids.erase(ids.begin());
  if (!IsValidLocalPart(id)) return FetchProfiles(std::move(ids), out, done);
  Stanza iq(link_->ctx(), "iq");
  iq.Attr("type", "get").Attr("to", JidOf(id)).Add(Stanza(link_->ctx(), "vCard").Ns(ns::kVCard));
  link_->SendIq(std::move(iq), [this, id, ids, out, done](xmpp_stanza_t* reply) {
    if (reply == nullptr) return done(TIM_ERR_NETWORK, "the server did not answer", "");
    // Unknown accounts answer with an error or an empty vCard: left out.
    xmpp_stanza_t* vcard = ChildOf(reply, "vCard", ns::kVCard);
    if (AttrOf(reply, "type") == "result" && vcard != nullptr &&
        xmpp_stanza_get_children(vcard) != nullptr) {
      Json::Value profile = ProfileFromVCard(id, vcard);
      if (id == user_) {
        profile["user_profile_add_permission"] =
            static_cast<int>(Number(store_.Setting(kAddPermissionKey), 2));
      }
      profiles_[id] = profile;
      out->append(profile);
    } else if (id == user_ || roster_.count(id) > 0) {
      out->append(ProfileObject(FieldsOf(id)));
    }
    FetchProfiles(ids, out, done);
  });
}

void XmppBackend::PublishAvatarUrl(const std::string& url, std::function<void()> then) {
  xmpp_ctx_t* ctx = link_->ctx();
  char id[32];
  std::snprintf(id, sizeof id, "%016llx", static_cast<unsigned long long>(Hash63(url)));
  Stanza metadata(ctx, "metadata");
  metadata.Ns("urn:xmpp:avatar:metadata");
  if (!url.empty()) {
    metadata.Add(Stanza(ctx, "info")
                     .Attr("id", id)
                     .Attr("url", url)
                     .Attr("bytes", "0")
                     .Attr("type", "image/png"));
  }
  Stanza item(ctx, "item");
  item.Attr("id", id).Add(metadata);
  Stanza publish(ctx, "publish");
  publish.Attr("node", "urn:xmpp:avatar:metadata").Add(item);
  // Faces are public, like the rest of the profile.
  Stanza form(ctx, "x");
  form.Ns(ns::kDataForm).Attr("type", "submit");
  form.Add(Stanza(ctx, "field")
               .Attr("var", "FORM_TYPE")
               .Attr("type", "hidden")
               .AddText("value", "http://jabber.org/protocol/pubsub#publish-options"));
  form.Add(Stanza(ctx, "field").Attr("var", "pubsub#access_model").AddText("value", "open"));
  Stanza options(ctx, "publish-options");
  options.Add(form);
  Stanza pubsub(ctx, "pubsub");
  pubsub.Ns("http://jabber.org/protocol/pubsub").Add(publish).Add(options);
  Stanza iq(ctx, "iq");
  iq.Attr("type", "set").Add(pubsub);
  link_->SendIq(std::move(iq), [this, then](xmpp_stanza_t* reply) {
    if (reply == nullptr || AttrOf(reply, "type") != "result") {
      Trace("the face address was not kept: %s",
            reply == nullptr ? "no answer" : ErrorCondition(reply).c_str());
    }
    then();
  });
}

int XmppBackend::GetProfiles(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  auto ids = reader.StringArray("friendship_getprofilelist_param_identifier_array");
  reader.Bool("friendship_getprofilelist_param_force_update");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return WhenSignedIn([this, ids, done] {
    FetchProfiles(ids, std::make_shared<Json::Value>(Json::arrayValue), done);
  });
}

int XmppBackend::ModifySelfProfile(const Json::Value& param, ResultFn done) {
  ParamReader reader(param);
  // The vCard has no place this backend reads back for these.
  for (const char* unkept :
       {"user_profile_item_gender", "user_profile_item_birthday", "user_profile_item_location",
        "user_profile_item_language", "user_profile_item_level", "user_profile_item_role"}) {
    if (reader.Has(unkept)) return TIM_ERR_INVALID_PARAM;
  }
  std::map<std::string, std::string> fields;  // vCard element -> value
  if (reader.Has("user_profile_item_nick_name")) {
    fields["NICKNAME"] = reader.String("user_profile_item_nick_name");
  }
  if (reader.Has("user_profile_item_face_url")) {
    fields["PHOTO"] = reader.String("user_profile_item_face_url");
  }
  if (reader.Has("user_profile_item_self_signature")) {
    fields["DESC"] = reader.String("user_profile_item_self_signature");
  }
  const bool has_permission = reader.Has("user_profile_item_add_permission");
  const int64_t permission = reader.Int64("user_profile_item_add_permission", 0);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  if (has_permission &&
      (permission < kTIMAddPermission_AllowAny || permission > kTIMAddPermission_DenyAny)) {
    return TIM_ERR_INVALID_PARAM;
  }
  return WhenSignedIn([this, fields, has_permission, permission, done] {
    // Who may add me is this client's answer to requests: kept here.
    if (has_permission) store_.SetSetting(kAddPermissionKey, std::to_string(permission));
    xmpp_ctx_t* ctx = link_->ctx();
    Stanza get(ctx, "iq");
    get.Attr("type", "get").Add(Stanza(ctx, "vCard").Ns(ns::kVCard));
    link_->SendIq(std::move(get), [this, fields, done](xmpp_stanza_t* reply) {
      if (reply == nullptr) return done(TIM_ERR_NETWORK, "the server did not answer", "");
      xmpp_ctx_t* ctx = link_->ctx();
      // A vCard is replaced as a whole: keep what this call does not change.
      Stanza vcard(ctx, "vCard");
      vcard.Ns(ns::kVCard);
      xmpp_stanza_t* old = ChildOf(reply, "vCard", ns::kVCard);
      for (xmpp_stanza_t* c = old == nullptr ? nullptr : xmpp_stanza_get_children(old);
           c != nullptr; c = xmpp_stanza_get_next(c)) {
        if (xmpp_stanza_is_tag(c) && fields.count(NameOf(c)) == 0) {
          vcard.Add(Stanza::Adopt(xmpp_stanza_copy(c)));
        }
      }
      for (const auto& [name, value] : fields) {
        if (name != "PHOTO") vcard.AddText(name.c_str(), value);
      }
      Stanza set(ctx, "iq");
      set.Attr("type", "set").Add(vcard);
      auto face = fields.find("PHOTO");
      // An unchanged face address is published again: the vCard replaces it.
      const std::string kept = ChildText(ChildOf(old, "PHOTO"), "EXTVAL");
      const bool has_face = face != fields.end() || !kept.empty();
      const std::string url = face != fields.end() ? face->second : kept;
      link_->SendIq(std::move(set), [this, has_face, url, done](xmpp_stanza_t* answer) {
        if (answer == nullptr || AttrOf(answer, "type") != "result") {
          return done(TIM_ERR_NETWORK, "the server did not take the profile", "");
        }
        auto finish = [this, done] {
          // Friends learn of the change from our next presence.
          store_.SetSetting(kProfileVersionKey, link_->NewId());
          SendInitialPresence();
          FetchProfiles({user_}, std::make_shared<Json::Value>(Json::arrayValue),
                        [done](int code, const std::string& desc, const std::string& json) {
                          Json::Value list;
                          if (code != TIM_SUCC || !ParseJson(json, &list) || list.empty()) {
                            return done(code == TIM_SUCC ? TIM_ERR_NETWORK : code, desc, "");
                          }
                          done(TIM_SUCC, "", WriteJson(list[0]));
                        });
        };
        // A picture by address: servers keep it as the avatar's URL
        // (XEP-0084), which vCard readers see as PHOTO/EXTVAL. Published
        // after the vCard, which would otherwise replace it.
        if (has_face) return PublishAvatarUrl(url, finish);
        finish();
      });
    });
  });
}

}  // namespace imsdk::xmpp

// One-to-one messages: sending with the server's confirmation, receiving
// with duplicates dropped, the conversation list and read reports kept in
// the local store.
#include "imsdk/api_objects.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/outgoing_elems.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
namespace {

// Servers close a stream that carries a larger stanza (Prosody: 256 KiB);
// such a message is refused here instead, so stream management never
// resends it into the same wall.
constexpr size_t kLargestStanza = 200 * 1024;

int SendFailureCode(const std::string& condition) {
  if (condition == "service-unavailable" || condition == "item-not-found" ||
      condition == "recipient-unavailable") {
    return TIM_ERR_ACCOUNT_NOT_FOUND;
  }
  return TIM_ERR_NETWORK;
}

}  // namespace

Json::Value XmppBackend::MessageValue(int conv_type, const std::string& conv_id,
                                      const std::string& sender, uint64_t unique_id, uint64_t time,
                                      bool from_self, bool is_read,
                                      const Json::Value& elems) const {
  Json::Value v(Json::objectValue);
  v["message_conv_id"] = conv_id;
  v["message_conv_type"] = conv_type;
  v["message_sender"] = sender;
  v["message_client_time"] = Json::UInt64(time);
  v["message_server_time"] = Json::UInt64(time);
  v["message_is_from_self"] = from_self;
  v["message_platform"] = 0;
  v["message_is_read"] = is_read;
  v["message_status"] = kTIMMsg_SendSucc;
  v["message_unique_id"] = Json::UInt64(unique_id);
  Json::Value profile(Json::objectValue);
  profile["user_profile_identifier"] = sender;
  auto it = roster_.find(sender);
  profile["user_profile_nick_name"] = it == roster_.end() ? "" : it->second.name;
  profile["user_profile_face_url"] = "";
  v["message_sender_profile"] = profile;
  v["message_elem_array"] = elems;
  return v;
}

int XmppBackend::SendMessage(const std::string& id, int type, const Json::Value& msg,
                             ResultFn done) {
  const Json::Value& elems = msg["message_elem_array"];
  if (int code = CheckOutgoingElems(elems)) return code;
  if (WriteJson(elems).size() * 2 > kLargestStanza) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, id, type, msg, done] {
    auto failed = [this, id, type, msg, done](int code, const std::string& desc) {
      Trace("send to %s failed: %s", id.c_str(), desc.c_str());
      done(code, desc, WriteJson(FailedSendEcho(msg, id, type, user_)));
    };
    if (type == kTIMConv_Group) {
      auto room = rooms_.find(id);
      if (room == rooms_.end()) return failed(TIM_ERR_NOT_GROUP_MEMBER, "not a member");
      if (!room->second.joined) return failed(TIM_ERR_NETWORK, "not in the group's room yet");
    } else if (!IsValidLocalPart(id)) {
      return failed(TIM_ERR_ACCOUNT_NOT_FOUND, "not an account id");
    }
    if (!link_->online()) return failed(TIM_ERR_NETWORK, "the network is down");
    // Files first: the message carries their URLs.
    auto outgoing = std::make_shared<Json::Value>(msg);
    UploadFiles(
        outgoing, 0, [this, id, type, outgoing, done, failed](int code, const std::string& desc) {
          if (code != TIM_SUCC) return failed(code, desc);
          if (phase_.load() != kSignedIn || !link_->online()) {
            return failed(TIM_ERR_NETWORK, "the network is down");
          }
          SendConfirmed(id, type, *outgoing,
                        [failed, done](int code, const std::string& desc, const std::string& json) {
                          if (code != TIM_SUCC) return failed(code, desc);
                          done(code, desc, json);
                        });
        });
  });
}

void XmppBackend::SendConfirmed(const std::string& id, int type, const Json::Value& msg,
                                ResultFn done) {
  const bool group = type == kTIMConv_Group;
  const std::string origin = link_->NewId();
  if (group) own_sends_[origin] = "";
  const Json::Value& elems = msg["message_elem_array"];
  link_->Send(BuildChatMessage(link_->ctx(), group ? RoomJid(id) : JidOf(id), origin, elems,
                               group ? "groupchat" : "chat"));
  // The server handles a client's stanzas in order: once it answers a ping
  // sent after the message, it has routed the message or refused it.
  Stanza ping(link_->ctx(), "iq");
  ping.Attr("type", "get").Attr("to", config_.domain);
  ping.Add(Stanza(link_->ctx(), "ping").Ns(ns::kPing));
  link_->SendIq(std::move(ping), [this, id, type, origin, msg, done](xmpp_stanza_t* reply) {
    std::string archive_id;
    if (auto own = own_sends_.find(origin); own != own_sends_.end()) {
      archive_id = own->second;
      own_sends_.erase(own);
    }
    auto bounce = bounced_.find(origin);
    if (bounce != bounced_.end()) {
      const int code = bounce->second;
      bounced_.erase(bounce);
      return done(code, "the server refused the message", "");
    }
    if (reply == nullptr) return done(TIM_ERR_NETWORK, "the server did not confirm it", "");
    WireMessage wire;
    wire.from_bare = type == kTIMConv_Group ? RoomJid(id) : self_jid_;
    if (type == kTIMConv_Group) wire.nick = user_;
    wire.origin_id = origin;
    const uint64_t unique_id = MessageIdFor(wire);
    const Json::Value& elems = msg["message_elem_array"];
    Json::Value stored = MessageValue(type, id, user_, unique_id, Now(), true, true, elems);
    store_.AddMessage(type, id, unique_id, archive_id, Now(), true, WriteJson(stored));
    done(TIM_SUCC, "", WriteJson(stored));
  });
}

void XmppBackend::OnMessageError(xmpp_stanza_t* stanza) {
  const std::string id = AttrOf(stanza, "id");
  const std::string condition = ErrorCondition(stanza);
  Trace("the server returned message %s: %s", id.c_str(), condition.c_str());
  if (!id.empty()) bounced_[id] = SendFailureCode(condition);
}

void XmppBackend::OnMessage(xmpp_stanza_t* stanza) {
  if (AttrOf(stanza, "type") == "error") return OnMessageError(stanza);
  if (OnArchiveResult(stanza)) return;
  if (OnRoomNotice(stanza)) return;
  const std::string from = AttrOf(stanza, "from");
  if (AttrOf(stanza, "type") == "groupchat") {
    const std::string group = GroupOf(from);
    if (group.empty() || rooms_.count(group) == 0) return;
    if (OnMarkerOrRetraction(stanza, group)) return;
    std::string why;
    auto wire = ReadGroupMessage(stanza, &why);
    if (!wire) {
      if (why != "no content")
        Trace("group message from %s ignored: %s", from.c_str(), why.c_str());
      return;
    }
    return AcceptGroupMessage(group, *wire);
  }
  if (from.empty() || BareJid(from) == self_jid_) return;  // carbons are not enabled
  if (OnMarkerOrRetraction(stanza, "")) return;
  std::string why;
  auto wire = ReadChatMessage(stanza, self_jid_, &why);
  if (!why.empty() && wire) Trace("message from %s: %s", from.c_str(), why.c_str());
  if (!wire) {
    if (why != "no content") Trace("message from %s ignored: %s", from.c_str(), why.c_str());
    return;
  }
  AcceptIncoming(*wire);
}

void XmppBackend::AcceptIncoming(const WireMessage& wire) {
  const std::string peer = UserOf(wire.from_bare);
  if (peer.empty()) {
    Trace("message from %s ignored: not an account of %s", wire.from_bare.c_str(),
          config_.domain.c_str());
    return;
  }
  if (!wire.archive_id.empty()) last_archive_id_ = wire.archive_id;
  QueueIncoming(kTIMConv_C2C, peer, peer, wire);
  // What a read report will name (the newest message from the peer).
  if (!wire.origin_id.empty()) store_.SetSetting(LastOriginKey(peer), wire.origin_id);
}

void XmppBackend::AcceptGroupMessage(const std::string& group, const WireMessage& wire) {
  if (!wire.archive_id.empty()) room_last_ids_[group] = wire.archive_id;
  // The room sends our own messages back: the send stores them, with the
  // archive id learnt here. (Those of our other devices are new here.)
  if (auto own = own_sends_.find(wire.origin_id); wire.nick == user_ && own != own_sends_.end()) {
    own->second = wire.archive_id;
    return;
  }
  QueueIncoming(kTIMConv_Group, group, wire.nick, wire);
}

void XmppBackend::QueueIncoming(int conv_type, const std::string& conv_id,
                                const std::string& sender, const WireMessage& wire) {
  const uint64_t unique_id = MessageIdFor(wire);
  const uint64_t time = wire.server_time != 0 ? wire.server_time : Now();
  const bool from_self = sender == user_;
  Json::Value value =
      MessageValue(conv_type, conv_id, sender, unique_id, time, from_self, from_self, wire.elems);
  if (!batch_open_) {
    // One transaction for everything one pass of the loop received.
    store_.Begin();
    batch_open_ = true;
  }
  if (!store_.AddMessage(conv_type, conv_id, unique_id, wire.archive_id, time, from_self,
                         WriteJson(value))) {
    return;  // seen before: a resend after reconnecting, or the archive and the live copy
  }
  incoming_.append(std::move(value));
}

void XmppBackend::FlushIncoming() {
  if (!room_last_ids_.empty() && !batch_open_) {
    store_.Begin();
    batch_open_ = true;
  }
  if (batch_open_) {
    if (!last_archive_id_.empty()) store_.SetSetting(kLastArchiveIdKey, last_archive_id_);
    for (const auto& [group, id] : room_last_ids_) {
      store_.SetSetting(RoomLastArchiveIdKey(group), id);
    }
    room_last_ids_.clear();
    store_.Commit();
    batch_open_ = false;
  }
  if (incoming_.empty() || phase_.load() != kSignedIn) return;  // held until signed in
  Emit(Event{EventKind::kNewMessages, WriteJson(incoming_)});
  incoming_ = Json::Value(Json::arrayValue);
}

Json::Value XmppBackend::ConversationValue(const StoredConversation& conv) const {
  Json::Value last;
  if (!conv.last_message.empty() && !ParseJson(conv.last_message, &last)) last = Json::Value();
  return ConversationObject(user_, conv.type, conv.id, conv.unread, conv.active_time, last);
}

int XmppBackend::GetConvList(ResultFn done) {
  return WhenSignedIn([this, done] {
    Json::Value list(Json::arrayValue);
    for (const auto& conv : store_.Conversations()) list.append(ConversationValue(conv));
    done(TIM_SUCC, "", WriteJson(list));
  });
}

int XmppBackend::CreateConv(const std::string& id, int type, ResultFn done) {
  return WhenSignedIn([this, id, type, done] {
    done(TIM_SUCC, "", WriteJson(ConversationValue(store_.TouchConversation(type, id, Now()))));
  });
}

int XmppBackend::DeleteConv(const std::string& id, int type, ResultFn done) {
  return AnswerNow([this, id, type, done] {
    if (!store_.Conversation(type, id)) return static_cast<int>(TIM_ERR_CONV_NOT_FOUND);
    // Only this device's copy: the server's archive keeps the history.
    store_.DeleteConversation(type, id);
    done(TIM_SUCC, "", "");
    return static_cast<int>(TIM_SUCC);
  });
}

int XmppBackend::ReportRead(const std::string& id, int type, const Json::Value& msg,
                            ResultFn done) {
  ParamReader reader(msg);
  const uint64_t up_to = reader.UInt64("message_unique_id", 0);
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return AnswerNow([this, id, type, up_to, done] {
    if (!store_.Conversation(type, id)) return static_cast<int>(TIM_ERR_CONV_NOT_FOUND);
    store_.MarkRead(type, id, up_to);
    if (type == kTIMConv_C2C) SendDisplayed(id, up_to);
    done(TIM_SUCC, "", "");
    return static_cast<int>(TIM_SUCC);
  });
}

}  // namespace imsdk::xmpp

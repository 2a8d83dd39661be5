// Read markers (XEP-0333) for the read reports, and retractions (XEP-0424)
// arriving as the revoke callback.
#include "imsdk/api_objects.h"
#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
std::string XmppBackend::LastOriginKey(const std::string& peer) {
  return "last_origin_id:" + peer;
}

void XmppBackend::SendDisplayed(const std::string& peer, uint64_t up_to) {
  WireMessage newest;
  newest.from_bare = JidOf(peer);
  newest.origin_id = store_.Setting(LastOriginKey(peer));
  // A marker names one message and means all before it: only a report up
  // to the newest one (or of everything) can be told.
  if (newest.origin_id.empty() || !link_->online()) return;
  if (up_to != 0 && MessageIdFor(newest) != up_to) return;
  const std::string& id = newest.origin_id;
  Stanza message(link_->ctx(), "message");
  message.Attr("to", JidOf(peer)).Attr("type", "chat").Attr("id", link_->NewId());
  message.Add(Stanza(link_->ctx(), "displayed").Ns(ns::kMarkers).Attr("id", id));
  message.Add(Stanza(link_->ctx(), "store").Ns(ns::kHints));
  link_->Send(message);
}

bool XmppBackend::OnMarkerOrRetraction(xmpp_stanza_t* stanza, const std::string& group) {
  const std::string from = AttrOf(stanza, "from");
  if (xmpp_stanza_t* displayed = ChildOf(stanza, "displayed", ns::kMarkers)) {
    const std::string peer = UserOf(from);
    if (!group.empty() || peer.empty()) return true;  // read reports in groups stay local
    // The peer read our message of that id, and everything before it.
    WireMessage ours;
    ours.from_bare = self_jid_;
    ours.origin_id = AttrOf(displayed, "id");
    uint64_t time = store_.MessageTime(MessageIdFor(ours));
    if (time == 0) time = Now();
    Json::Value receipt(Json::objectValue);
    receipt["msg_receipt_conv_id"] = peer;
    receipt["msg_receipt_conv_type"] = kTIMConv_C2C;
    receipt["msg_receipt_time_stamp"] = Json::UInt64(time);
    Json::Value array(Json::arrayValue);
    array.append(receipt);
    Emit(Event{EventKind::kReadReceipts, WriteJson(array)});
    return true;
  }
  const std::string retracted = RetractedId(stanza);
  if (retracted.empty()) return false;
  // Only the sender retracts its own message.
  WireMessage original;
  original.from_bare = BareJid(from);
  original.origin_id = retracted;
  std::string conv_id = UserOf(from);
  int conv_type = kTIMConv_C2C;
  if (!group.empty()) {
    const size_t slash = from.find('/');
    original.nick = slash == std::string::npos ? "" : from.substr(slash + 1);
    conv_id = group;
    conv_type = kTIMConv_Group;
  }
  const uint64_t unique_id = MessageIdFor(original);
  if (conv_id.empty() || !store_.HasMessage(unique_id)) {
    Trace("a retraction from %s of an unknown message ignored", from.c_str());
    return true;
  }
  FlushIncoming();  // the message before its retraction
  Json::Value array(Json::arrayValue);
  array.append(RevokedLocator(conv_id, conv_type, store_.MessageTime(unique_id), unique_id));
  Emit(Event{EventKind::kRevoked, WriteJson(array)});
  return true;
}

}  // namespace imsdk::xmpp

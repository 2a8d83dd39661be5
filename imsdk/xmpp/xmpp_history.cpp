// History pages from the server's archive (MAM with result set paging).
#include <algorithm>
#include <ctime>
#include <limits>

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"

namespace imsdk::xmpp {
namespace {

// Prosody answers at most 50 results per page.
constexpr int kPageSize = 50;
// A page walk that finds nothing stops somewhere.
constexpr int kMostPages = 40;
// Catching up by time starts this much before the newest message kept: the
// clocks that stamped them may differ a little (duplicates are dropped).
constexpr uint64_t kCatchUpMarginSeconds = 300;

}  // namespace

struct XmppBackend::HistoryQuery {
  int conv_type = kTIMConv_C2C;
  std::string peer;  // the peer, or the group
  int count = 20;
  bool forward = false;
  uint64_t anchor = 0;
  // Looking for the anchor: its archive id is not known, so the pages are
  // read from the newest until it shows up.
  bool seeking = false;
  std::string cursor;  // RSM before/after id
  int pages = 0;
  std::string query_id;
  std::vector<Json::Value> page;  // this page's messages, in archive order
  Json::Value collected{Json::arrayValue};
  ResultFn done;
  // Catching up after a return: every conversation (or one room), from the
  // last archive id seen, each message handed to the new-message callback.
  bool catch_up = false;
  std::string start;  // a catch-up without a known id: since this time
  std::string error;  // the server's error condition, when it refused
};

void XmppBackend::CatchUp() {
  const std::string last = store_.Setting(kLastArchiveIdKey);
  if (last.empty()) return;  // a first sign-in has no past to catch up on
  CatchUpFrom("", last, "");
}

void XmppBackend::CatchUpRoom(const std::string& group) {
  const std::string last = store_.Setting(RoomLastArchiveIdKey(group));
  // Never received anything there: whatever came since we joined.
  const std::string joined = last.empty() ? store_.Setting("room_joined:" + group) : "";
  if (last.empty() && joined.empty()) return;
  CatchUpFrom(group, last, joined);
}

void XmppBackend::CatchUpFrom(const std::string& group, const std::string& after,
                              const std::string& start) {
  auto query = std::make_shared<HistoryQuery>();
  query->catch_up = true;
  query->forward = true;
  if (!group.empty()) {
    query->conv_type = kTIMConv_Group;
    query->peer = group;
  }
  query->cursor = after;
  if (after.empty()) query->start = start;
  query->count = std::numeric_limits<int>::max();
  HistoryQuery* self = query.get();  // alive while its own answer runs
  query->done = [this, self, group, after](int code, const std::string& desc, const std::string&) {
    if (code == TIM_SUCC) return;
    const char* where = group.empty() ? "chats" : group.c_str();
    if (!after.empty() && self->error == "item-not-found") {
      // The archive no longer knows the last message seen (it was reset,
      // or expired it while the user was away). Having asked the archive,
      // the user gets no offline copies either: catch up by time.
      const uint64_t newest = group.empty() ? store_.NewestMessageTime(kTIMConv_C2C, "")
                                            : store_.NewestMessageTime(kTIMConv_Group, group);
      Trace("catching up in %s: the archive forgot %s, reading it from %llu on", where,
            after.c_str(), static_cast<unsigned long long>(newest));
      // Nothing kept: the whole archive.
      const std::string since =
          newest > kCatchUpMarginSeconds ? FormatStamp(newest - kCatchUpMarginSeconds) : "";
      return CatchUpFrom(group, "", since);
    }
    Trace("catching up in %s failed: %s", where, desc.c_str());
  };
  QueryArchivePage(query);
}

int XmppBackend::GetMessages(const std::string& id, int type, const Json::Value& param,
                             ResultFn done) {
  ParamReader reader(param);
  const Json::Value& last = reader.Object("msg_getmsglist_param_last_msg");
  const int64_t count = reader.Int64("msg_getmsglist_param_count", 20);
  const bool forward = reader.Bool("msg_getmsglist_param_is_forward", false);
  reader.Bool("msg_getmsglist_param_is_remble", false);
  ParamReader last_reader(last);
  const uint64_t anchor = last_reader.UInt64("message_unique_id", 0);
  if (!reader.ok() || !last_reader.ok()) return TIM_ERR_INVALID_JSON;
  if (count < 1 || count > 1000) return TIM_ERR_INVALID_PARAM;
  return WhenSignedIn([this, id, type, count, forward, anchor, done] {
    if (!IsValidLocalPart(id)) return done(TIM_SUCC, "", "[]");
    if (type == kTIMConv_Group && rooms_.count(id) == 0) {
      return done(TIM_ERR_NOT_GROUP_MEMBER, "not a member of this group", "");
    }
    auto query = std::make_shared<HistoryQuery>();
    query->conv_type = type;
    query->peer = id;
    query->count = static_cast<int>(count);
    query->forward = forward;
    query->anchor = anchor;
    query->done = done;
    if (anchor != 0) {
      query->cursor = store_.ArchiveId(anchor);
      query->seeking = query->cursor.empty();
    }
    if (query->seeking && forward) {
      // Newer than a message the archive cannot place: nothing to add.
      return done(TIM_SUCC, "", "[]");
    }
    QueryArchivePage(query);
  });
}

void XmppBackend::QueryArchivePage(std::shared_ptr<HistoryQuery> query) {
  xmpp_ctx_t* ctx = link_->ctx();
  query->query_id = link_->NewId();
  query->page.clear();
  Stanza form(ctx, "x");
  form.Ns(ns::kDataForm).Attr("type", "submit");
  Stanza form_type(ctx, "field");
  form_type.Attr("var", "FORM_TYPE").Attr("type", "hidden").AddText("value", ns::kMam);
  form.Add(form_type);
  const bool room = query->conv_type == kTIMConv_Group;
  if (!query->catch_up && !room) {
    Stanza with(ctx, "field");
    with.Attr("var", "with").AddText("value", JidOf(query->peer));
    form.Add(with);
  }
  if (!query->start.empty() && query->cursor.empty()) {
    Stanza start(ctx, "field");
    start.Attr("var", "start").AddText("value", query->start);
    form.Add(start);
  }
  Stanza set(ctx, "set");
  set.Ns(ns::kRsm).AddText("max", std::to_string(kPageSize));
  if (query->forward) {
    // Without a cursor: from the start time on.
    if (!query->cursor.empty()) set.AddText("after", query->cursor);
  } else if (query->cursor.empty()) {
    set.Add(Stanza(ctx, "before"));  // the last page
  } else {
    set.AddText("before", query->cursor);
  }
  Stanza mam(ctx, "query");
  mam.Ns(ns::kMam).Attr("queryid", query->query_id).Add(form).Add(set);
  Stanza iq(ctx, "iq");
  iq.Attr("type", "set").Add(mam);
  if (room) iq.Attr("to", RoomJid(query->peer));
  history_[query->query_id] = query;
  link_->SendIq(std::move(iq), [this, query](xmpp_stanza_t* reply) {
    history_.erase(query->query_id);
    if (reply == nullptr || AttrOf(reply, "type") == "error") {
      query->error = reply == nullptr ? "no answer" : ErrorCondition(reply);
      Trace("history with %s failed: %s", query->peer.c_str(), query->error.c_str());
      return query->done(TIM_ERR_NETWORK, "the server's archive did not answer", "");
    }
    xmpp_stanza_t* fin = ChildOf(reply, "fin", ns::kMam);
    xmpp_stanza_t* rsm = ChildOf(fin, "set", ns::kRsm);
    const bool complete = AttrOf(fin, "complete") == "true" || query->page.empty();
    // Newest first going back, oldest first going forward.
    if (!query->forward) std::reverse(query->page.begin(), query->page.end());
    for (auto& msg : query->page) {
      if (static_cast<int>(query->collected.size()) >= query->count) break;
      if (query->seeking) {
        if (msg["message_unique_id"].asUInt64() == query->anchor) query->seeking = false;
        continue;
      }
      if (msg["message_unique_id"].asUInt64() == query->anchor) continue;
      query->collected.append(msg);
    }
    const bool full = !query->catch_up && static_cast<int>(query->collected.size()) >= query->count;
    if (full || complete || ++query->pages >= kMostPages) {
      return query->done(TIM_SUCC, "", WriteJson(query->collected));
    }
    query->cursor = ChildText(rsm, query->forward ? "last" : "first");
    if (query->cursor.empty()) return query->done(TIM_SUCC, "", WriteJson(query->collected));
    QueryArchivePage(query);
  });
}

bool XmppBackend::OnArchiveResult(xmpp_stanza_t* stanza) {
  xmpp_stanza_t* result = ChildOf(stanza, "result", ns::kMam);
  if (result == nullptr) return false;
  auto it = history_.find(AttrOf(result, "queryid"));
  if (it == history_.end()) return true;
  HistoryQuery& query = *it->second;
  const bool room = query.conv_type == kTIMConv_Group;
  // Only the archive's owner speaks for it (our own server for ours).
  const std::string from = AttrOf(stanza, "from");
  if (!from.empty() && from != (room ? RoomJid(query.peer) : self_jid_)) return true;
  xmpp_stanza_t* forwarded = ChildOf(result, "forwarded", ns::kForward);
  xmpp_stanza_t* inner = ChildOf(forwarded, "message");
  // An invitation that came while we were away: having asked the archive,
  // we get no offline copy of it.
  if (query.catch_up && !room && OnRoomNotice(inner)) return true;
  if (IsMarkerOrRetraction(inner)) {
    // Replayed while catching up, as if live; never history of their own.
    const std::string sender = AttrOf(inner, "from");
    const bool mine =
        room ? sender == RoomJid(query.peer) + "/" + user_ : BareJid(sender) == self_jid_;
    if (query.catch_up && !mine) OnMarkerOrRetraction(inner, room ? query.peer : "");
    return true;
  }
  std::string why;
  auto wire = room ? ReadGroupMessage(inner, &why) : ReadChatMessage(inner, self_jid_, &why);
  if (!wire) return true;  // markers, receipts, chat states, room notices
  wire->archive_id = AttrOf(result, "id");
  if (wire->server_time == 0) wire->server_time = DelayStamp(forwarded);
  const bool from_self = room ? wire->nick == user_ : wire->from_bare == self_jid_;
  if (query.catch_up) {
    if (from_self) return true;
    if (room) {
      AcceptGroupMessage(query.peer, *wire);
    } else {
      AcceptIncoming(*wire);
    }
    return true;
  }
  const std::string peer = room ? query.peer : UserOf(from_self ? wire->to_bare : wire->from_bare);
  if (peer != query.peer) return true;
  const std::string sender = from_self ? user_ : room ? wire->nick : peer;
  const uint64_t unique_id = MessageIdFor(*wire);
  store_.SetArchiveId(unique_id, wire->archive_id);
  query.page.push_back(MessageValue(query.conv_type, peer, sender, unique_id, wire->server_time,
                                    from_self, true, wire->elems));
  return true;
}

}  // namespace imsdk::xmpp

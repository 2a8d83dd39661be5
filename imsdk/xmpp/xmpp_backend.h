#pragma once
// The SDK's backend for an XMPP server. The C functions' requests are handed
// to the link's worker thread, which owns the connection, the roster and the
// local store; results and events are reported from that thread only, so
// they reach the callback thread in the order things happened.
#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "imsdk/backend.h"
#include "imsdk/xmpp/group_codec.h"
#include "imsdk/xmpp/http_transfer.h"
#include "imsdk/xmpp/local_store.h"
#include "imsdk/xmpp/message_codec.h"
#include "imsdk/xmpp/xmpp_config.h"
#include "imsdk/xmpp/xmpp_link.h"

namespace imsdk::xmpp {

struct RosterItem {
  std::string name;  // the remark
  std::string subscription = "none";
  bool asking = false;  // our request waits for the peer
  std::vector<std::string> groups;
  bool IsFriend() const { return subscription == "both"; }
};

class XmppBackend final : public Backend, public LinkListener {
 public:
  // With a non-empty `config_error` every sign-in fails with that text.
  XmppBackend(XmppConfig config, std::string config_error);
  ~XmppBackend() override;

  void Start(EventSink* sink) override;
  void Stop() override;
  int Login(const std::string& user, const std::string& sig, ResultFn done) override;
  int Logout(ResultFn done) override;
  int GetConvList(ResultFn done) override;
  int CreateConv(const std::string& id, int type, ResultFn done) override;
  int DeleteConv(const std::string& id, int type, ResultFn done) override;
  int SendMessage(const std::string& id, int type, const Json::Value& msg, ResultFn done) override;
  int GetMessages(const std::string& id, int type, const Json::Value& param,
                  ResultFn done) override;
  int ReportRead(const std::string& id, int type, const Json::Value& msg, ResultFn done) override;
  int Download(const Json::Value& param, const std::string& path, ResultFn done) override;
  int GetFriends(ResultFn done) override;
  int AddFriend(const Json::Value& param, ResultFn done) override;
  int DeleteFriends(const Json::Value& param, ResultFn done) override;
  int ModifyFriend(const Json::Value& param, ResultFn done) override;
  int GetPendencies(const Json::Value& param, ResultFn done) override;
  int ReportPendenciesRead(uint64_t time_stamp, ResultFn done) override;
  int HandleFriendRequest(const Json::Value& param, ResultFn done) override;
  int GetProfiles(const Json::Value& param, ResultFn done) override;
  int ModifySelfProfile(const Json::Value& param, ResultFn done) override;
  int GetJoinedGroups(ResultFn done) override;
  int GetGroupInfos(const Json::Value& ids, ResultFn done) override;
  int CreateGroup(const Json::Value& param, ResultFn done) override;
  int DisbandGroup(const std::string& group_id, ResultFn done) override;
  int QuitGroup(const std::string& group_id, ResultFn done) override;
  int InviteMembers(const Json::Value& param, ResultFn done) override;
  int RemoveMembers(const Json::Value& param, ResultFn done) override;
  int ModifyGroup(const Json::Value& param, ResultFn done) override;
  int GetMembers(const Json::Value& param, ResultFn done) override;

 private:
  enum Phase { kSignedOut, kSigningIn, kSignedIn };

  // LinkListener (worker thread).
  void OnStreamReady(bool again) override;
  void OnSignInFailed(LoginFailure why, const std::string& detail) override;
  void OnConnectionLost(const std::string& detail) override;
  void OnSessionEnded(bool kicked, const std::string& detail) override;
  void OnStanza(xmpp_stanza_t* stanza) override;
  void OnIdle() override;

  // Refuses when not signed in; else runs `task` on the worker.
  int WhenSignedIn(std::function<void()> task);
  // For requests whose refusal depends on the worker's state: runs `task`
  // on the worker and returns its code (a refusal, or 0 after it answered).
  int AnswerNow(std::function<int()> task);
  void Emit(Event event);
  void Trace(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void EndSession();
  std::string JidOf(const std::string& user) const { return user + "@" + config_.domain; }
  // The user id of a JID of our domain ("" for other domains).
  std::string UserOf(const std::string& jid) const;
  uint64_t Now() const;

  // Session (xmpp_backend.cpp).
  void FetchRoster(std::function<void(bool ok)> then);
  void SendInitialPresence();

  // Messages (xmpp_messages.cpp).
  void OnMessage(xmpp_stanza_t* stanza);
  void OnMessageError(xmpp_stanza_t* stanza);
  // Stores a received message; queues it for the new-message callback
  // unless it is a duplicate.
  void AcceptIncoming(const WireMessage& wire);
  void AcceptGroupMessage(const std::string& group, const WireMessage& wire);
  void QueueIncoming(int conv_type, const std::string& conv_id, const std::string& sender,
                     const WireMessage& wire);
  // Read markers and retractions (xmpp_markers.cpp). True when `stanza`
  // was one (used or dropped); `group` is set for a room's message.
  bool OnMarkerOrRetraction(xmpp_stanza_t* stanza, const std::string& group);
  // Tells the peer we read up to its newest message (when `up_to`, 0 for
  // all, is that one).
  void SendDisplayed(const std::string& peer, uint64_t up_to);
  static std::string LastOriginKey(const std::string& peer);
  // Uploads the local files of the message's elements from `index` on,
  // writing their URLs into the elements (xmpp_files.cpp).
  void UploadFiles(std::shared_ptr<Json::Value> msg, Json::ArrayIndex index,
                   std::function<void(int code, const std::string& desc)> then);
  // Sends a message and answers `done` once the server routed or refused it.
  void SendConfirmed(const std::string& to, int type, const Json::Value& msg, ResultFn done);
  Json::Value MessageValue(int conv_type, const std::string& conv_id, const std::string& sender,
                           uint64_t unique_id, uint64_t time, bool from_self, bool is_read,
                           const Json::Value& elems) const;
  void FlushIncoming();
  Json::Value ConversationValue(const StoredConversation& conv) const;

  // History (xmpp_history.cpp).
  struct HistoryQuery;
  void QueryArchivePage(std::shared_ptr<HistoryQuery> query);
  // Fetches from the archive what came after the last message seen (a
  // return without resumption may have lost what was in flight).
  void CatchUp();
  // Fetches what a room's archive holds after the last message seen there.
  void CatchUpRoom(const std::string& group);
  // Catches up in the 1:1 archive (`group` empty) or a room's, after the
  // archive id `after`, or (when empty) from the stamp `start` on (empty:
  // the whole archive). When the archive forgot `after`, again by time.
  void CatchUpFrom(const std::string& group, const std::string& after, const std::string& start);
  static constexpr const char* kLastArchiveIdKey = "last_archive_id";
  static std::string RoomLastArchiveIdKey(const std::string& group) {
    return "room_last_archive_id:" + group;
  }
  // True when `stanza` is an archive result (used or dropped).
  bool OnArchiveResult(xmpp_stanza_t* stanza);

  // Groups (xmpp_groups.cpp: requests; xmpp_group_events.cpp: what rooms tell).
  std::string RoomJid(const std::string& group) const { return group + "@" + config_.muc_domain; }
  // The group id of a room JID ("" for other services).
  std::string GroupOf(const std::string& jid) const;
  // Reads the bookmarked rooms into rooms_.
  void FetchBookmarks(std::function<void(bool ok)> then);
  void PublishBookmark(const std::string& group);
  // Joins every bookmarked room and catches up on each.
  void EnterRooms();
  // Joins (after checking the room still exists) and reads its members.
  void JoinRoom(const std::string& group, std::function<void(int code)> then);
  void RefreshMembers(const std::string& group, std::function<void(int code)> then);
  void AskAffiliations(const std::string& group, size_t step,
                       std::shared_ptr<std::map<std::string, std::string>> found,
                       std::function<void(int code)> then);
  // Answers TIMGroupGetGroupInfoList from `i` on, one room after the other.
  void CollectGroupInfos(std::vector<std::string> wanted, size_t i,
                         std::shared_ptr<Json::Value> out, ResultFn done);
  // Drops a room we no longer belong to: its state, bookmark and occupant.
  void ForgetRoom(const std::string& group);
  void OnRoomPresence(xmpp_stanza_t* stanza);
  // True when `stanza` was a room's notice or an invitation (used or dropped).
  bool OnRoomNotice(xmpp_stanza_t* stanza);
  void OnInvitation(const std::string& group, const std::string& inviter);
  // Applies a member's new affiliation and posts the tip it means. `op` is
  // who did it ("" unknown).
  void ApplyAffiliation(const std::string& group, const std::string& user,
                        const std::string& affiliation, const std::string& op);
  // Puts a tips or report element into the group's conversation (and the
  // tips callback for tips).
  void PostGroupNotice(const std::string& group, const std::string& op, const Json::Value& elem);
  // Sets affiliations one after the other; `then` gets one code per entry.
  void SetAffiliations(const std::string& group,
                       std::vector<std::pair<std::string, std::string>> changes,
                       std::shared_ptr<std::vector<int>> codes, std::function<void()> then);

  // Friends and profiles (xmpp_friends.cpp).
  void OnRosterPush(xmpp_stanza_t* iq);
  void ApplyRosterItem(xmpp_stanza_t* item, Json::Value* added, Json::Value* removed);
  void OnPresence(xmpp_stanza_t* stanza);
  void OnSubscribeRequest(const std::string& peer, const std::string& wording);
  void SendPresence(const std::string& to, const char* type, const std::string& status = {});
  void SetRosterItem(const std::string& peer, const std::string& name,
                     const std::vector<std::string>& groups, std::function<void(bool)> then);
  Json::Value FriendValue(const std::string& id, const RosterItem& item) const;
  Json::Value RequestValue(const StoredRequest& request) const;
  void PublishAvatarUrl(const std::string& url, std::function<void()> then);
  Json::Value ProfileFromVCard(const std::string& id, xmpp_stanza_t* vcard) const;
  void FetchProfiles(std::vector<std::string> ids, std::shared_ptr<Json::Value> out, ResultFn done);

  XmppConfig config_;
  std::string config_error_;
  EventSink* sink_ = nullptr;
  std::unique_ptr<XmppLink> link_;
  HttpTransfers transfers_;  // reports back through link_
  std::atomic<int> phase_{kSignedOut};

  // ---- Worker thread only. ----
  std::string user_;
  std::string self_jid_;  // bare
  ResultFn login_done_;
  LocalStore store_;
  std::map<std::string, RosterItem> roster_;      // by user id
  Json::Value incoming_{Json::arrayValue};        // received, not yet reported
  bool batch_open_ = false;                       // a store transaction holds them
  std::string last_archive_id_;                   // newest archive id received
  std::map<std::string, int> bounced_;            // send ids the server refused: code
  std::map<std::string, std::string> own_sends_;  // group sends in flight: archive id
  std::map<std::string, std::shared_ptr<HistoryQuery>> history_;  // by query id
  std::map<std::string, Json::Value> profiles_;                   // profiles read, by user id
  std::map<std::string, std::string> profile_versions_;           // friends' announced versions
  std::map<std::string, RoomState> rooms_;                        // groups we belong to, by id
  std::map<std::string, std::string> room_last_ids_;  // newest archive id received per room
};

}  // namespace imsdk::xmpp

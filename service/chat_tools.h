#pragma once
// CChatTools: the module's one IM service object. It owns the SDK session,
// issues every SDK request, receives every SDK event and result, keeps the
// shared caches and hands results to the chat window by posting window
// messages (numbers in platform/window_messages.h).
//
// It is the face of parts with one job each (service/parts/): the recent
// conversations, the group directory, the friend directory, the pending
// sends and the downloads, each with its own lock; and the session
// (service/session.h), which knows who is signed in and stamps every payload
// posted to the window, so that what an ended session left in flight is
// dropped.
//
// Threads. SDK callbacks run on the SDK's callback thread; they copy what
// they are given and post it to the window, which hands it back here on its
// own thread (DispatchSdkEvent, OnMsgListArrived ...) with the payload's
// session stamp. A few callbacks act where they run: the login result, the
// group tips (groups reloaded from the host), kicked offline (logout), the
// network status and the download result. No part lock is held across an
// SDK call or a WindowPort call (a TIMLogout on the window thread waits for
// running callbacks, and the port may wait for the window thread).

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <json/json.h>

#include "host/group_actions.h"
#include "host/host_records.h"
#include "host/owner_transfer.h"
#include "platform/strings.h"
#include "platform/window_messages.h"
#include "records/drawing_payload.h"
#include "records/group_records.h"
#include "records/message_records.h"
#include "records/profile_records.h"
#include "service/face_downloads.h"
#include "service/parts/downloads.h"
#include "service/parts/friend_directory.h"
#include "service/parts/group_directory.h"
#include "service/parts/group_roster.h"
#include "service/parts/pending_sends.h"
#include "service/parts/recent_conversations.h"
#include "service/sdk_event_record.h"
#include "service/service_records.h"
#include "service/session.h"
#include "service/window_payloads.h"
#include "service/window_port.h"

class CChatDb;

class CChatTools {
 public:
  // The deployment's IM application id (a 10-digit constant of the build).
  static constexpr uint64_t kImAppId = 1400187352ULL;
  // History fetched per request when the window does not say otherwise.
  static constexpr uint32_t kDefaultMsgListCount = 20;
  // Most entries the message view takes from the new-message cache at once.
  static constexpr size_t kNewMessagesPerRefresh = 30;

  // The store is the process-wide one unless a test hands in another.
  CChatTools();
  explicit CChatTools(CChatDb& store);
  // Unregisters the SDK event callbacks that still point at this object.
  ~CChatTools();
  CChatTools(const CChatTools&) = delete;
  CChatTools& operator=(const CChatTools&) = delete;

  // The module's service object (constructed at library load).
  static CChatTools& Instance();

  // The window side. Without one, posts go nowhere (and are traced) and
  // boxes are only traced.
  void AttachWindow(service::WindowPort* window);
  service::WindowPort& Window() const;
  platform::WindowHandle ChatWindow() const;

  // ===== Start-up, sign-in, sign-out ========================================
  // Configuration, TIMInit, the thirteen SDK callbacks, the host callbacks.
  void Init();
  // True when TIMLogin accepted the request; the result arrives in TIMLoginFunc.
  bool Login(WString userId, WString userSig);
  // Empties every cache, forgets the user and closes the local store; the
  // session ends, and payloads still in flight for it will be dropped.
  void ClearResource();
  WString UserId() const;
  // The session payloads are stamped with now, and whether a stamp is current.
  service::SessionStamp CurrentSession() const { return session_.Stamp(); }
  bool IsCurrentSession(service::SessionStamp stamp) const { return session_.IsCurrent(stamp); }
  // The signed-in user's folders (database, faces, downloads), fixed when
  // the sign-in was accepted.
  service::SessionFolders Folders() const { return session_.Folders(); }
  service::StampedFolders CurrentFolders() const { return session_.StampAndFolders(); }

  static void TIMLoginFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMLogoutFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMSetConfigFunc(int32_t code, const char* desc, const char* json, void* user);

  // The configuration JSON sent before TIMInit (exactly four keys, no proxy).
  static Json::Value BuildUserConfig();

  // ===== SDK events and the window ==========================================
  static void TIMAddRecvNewMsgCallbackFunc(const char* json, void* user);
  static void TIMSetMsgReadedReceiptCallbackFunc(const char* json, void* user);
  static void TIMSetMsgRevokeCallbackFunc(const char* json, void* user);
  static void TIMSetGroupTipsEventCallbackFunc(const char* json, void* user);
  static void TIMSetNetworkStatusListenerCallbackFunc(int32_t status, int32_t code,
                                                      const char* desc, void* user);
  static void TIMSetKickedOfflineCallbackFunc(void* user);
  static void TIMSetUserSigExpiredCallbackFunc(void* user);
  static void TIMSetOnAddFriendCallbackFunc(const char* json, void* user);
  static void TIMSetOnDeleteFriendCallbackFunc(const char* json, void* user);
  static void TIMSetUpdateFriendProfileCallbackFunc(const char* json, void* user);
  static void TIMSetFriendAddRequestCallbackFunc(const char* json, void* user);
  static void TIMSetLogCallbackFunc(int32_t level, const char* log, void* user);
  static void TIMConvGetConvListFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMConvCreateFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMConvDeleteFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMMsgGetMsgListFunc(int32_t code, const char* desc, const char* json, void* user);
  static void IMMsgReportReadedFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMMsgDownloadFileElemToPathFunc(int32_t code, const char* desc, const char* json,
                                               void* user);
  static void TIMFriendshipGetFriendProfileListFunc(int32_t code, const char* desc,
                                                    const char* json, void* user);
  static void TIMGroupGetJoinedGroupListFunc(int32_t code, const char* desc, const char* json,
                                             void* user);

  // Window thread, message 3024: acts on the record by kind, unless its
  // session has ended. The window owns and frees the record, and posts 3184
  // when recent_list_flag is set after.
  void DispatchSdkEvent(SdkEventRecord& record, service::SessionStamp session);

  // The last status the SDK reported (TIMNetworkStatus); any thread.
  uint32_t NetworkStatus() const { return network_status_.load(); }

  // ===== Receiving, history, downloads ======================================
  // The answer arrives as 3196 (heap UTF-8 JSON) for OnMsgListArrived.
  void GetMsgList(const WString& convId, uint32_t convType, uint32_t count);
  // Window thread, message 3196: a history page, newest first.
  void OnMsgListArrived(std::string json, service::SessionStamp session);
  // `pushed` is the record's second flag byte: drawing-sync instructions are
  // acted on only for pushed messages.
  bool ParseMsgData(const std::string& text, uint8_t pushed, std::vector<MessageStru>& out);
  // Window thread: the new-message path shared by pushed and fetched
  // messages (for the current session, or for `session` when it still is).
  void OnRecvNewMsg(const SdkEventRecord* record);
  void OnRecvNewMsg(const SdkEventRecord* record, service::SessionStamp session);
  void ReportReaded(const WString& convId, uint32_t convType);
  // `elemParam` is an element's download parameter; the result is posted as
  // 3164 with `requestKey` (at once, or 50 ms later for pictures).
  void DownloadMessageElem(const WString& elemParam, const WString& path, uint64_t requestKey);
  std::optional<DownloadState> GetDownloadState(uint64_t requestKey) const;

  // Up to `limit` stored messages of the signed-in user's conversation, newest first.
  std::vector<MessageStru> StoredMessages(const WString& convId, int limit) const;
  // The new-message cache: messages received and not yet shown.
  size_t NewMessageCount(const WString& convId) const;
  // Removes and returns up to `max` of the oldest cached messages of the conversation.
  std::vector<MessageStru> TakeNewMessages(const WString& convId,
                                           size_t max = kNewMessagesPerRefresh);

  // ===== Conversations ======================================================
  void CreateConv(WString convId, uint32_t convType);
  int32_t Require_TIMConvDel(WString convId, uint32_t convType);
  void AddRecentConvID(const WString& convId, uint32_t convType);
  void DeleteConv(WString convId);
  // Window thread, SdkEventRecord of kind 5.
  void DealConvListFunc(const std::string& json);
  WString GetConvNickName(uint32_t convType, const WString& convId);
  uint32_t GetCurrenConvType(const WString& convId);
  // The local copy of a picture in the face cache when it is there; else
  // `fallback` now and the download through the host in the background,
  // which posts 3192 with `id` to `notify` (the chat window when none is
  // given) once the picture has arrived. Never waits for the network.
  WString FacePathFor(const WString& faceUrl, const WString& fallback, const WString& id);
  WString FacePathFor(const WString& faceUrl, const WString& fallback, const WString& id,
                      platform::WindowHandle notify);
  void GetConvImage(uint32_t convType, const WString& convId, WString& imagePath, WString& name);
  // Handed to the host: appends {name, id, type} per recent conversation of
  // type 1 or 2; null does nothing.
  void ProvideRecentConversations(std::vector<RecentConversationEntry>* list);
  // Asks the SDK for the conversation list (answer: 3024 of kind 5).
  int RequestConvList();

  std::vector<RecentConversation> RecentConversations() const;
  std::vector<RecentConversationKey> RecentConversationKeys() const;
  std::optional<RecentConversation> FindRecentConv(const WString& convId) const;
  size_t RecentCount() const;
  // The take-record operation: under "RencentConvData", removes the record
  // of `convId` from the recent list and returns it.
  std::optional<RecentConversation> TakeRecentConv(const WString& convId);
  // The window puts an opened conversation at the front.
  void InsertRecentConvFront(RecentConversation record);
  // The conversation set: every conversation the service knows, with its
  // last message.
  bool HasConversation(const WString& convId) const;
  size_t ConversationCount() const;
  std::optional<ConversationInfo_Stru> FindConversation(const WString& convId) const;
  // A message the module adds itself (a local notice): it becomes the
  // conversation's last message and goes to the new-message cache, which the
  // message view takes on 3025 mode 4 (posting that is the caller's).
  void AppendConversationMessage(const WString& convId, const MessageStru& message);
  // Conversations with unread messages ("-1": pending friend requests).
  bool IsUnread(const WString& convId) const;
  void SetUnread(const WString& convId, bool unread);
  std::set<WString> UnreadIds() const;
  // Cleared by the first non-empty conversation list after a sign-in.
  bool IsFirstConvList() const;

  // ===== Groups =============================================================
  // The host's cloud groups into the joined-group list and the group map;
  // posts 3185. Window thread (3181) or callback thread (group tips).
  void LoadHostGroups();
  int RequestJoinedGroupList();
  std::vector<GroupInfo> Groups() const;
  std::optional<GroupInfo> FindGroup(const WString& groupId) const;
  std::vector<CloudGroupInfo> HostGroups() const;
  bool IsJoinedGroup(const WString& groupId) const;
  // Host first, then the IM-side request when the host agreed.
  host::GroupActionResult RunGroupAction(const host::GroupActionRequest& request, const char* tag);
  // CreateCloudGroup at the host, then TIMGroupCreate with the host's group id.
  bool CreateGroup(const WString& name, const CloudMemberList& members);
  host::OwnerTransferResult TransferGroupOwner(const WString& imGroupId,
                                               const host::OwnerTransferRequest& request,
                                               const char* tag);
  // The groups the group windows looked up at the host, with their members
  // (service/group_operations.h acts on them).
  service::GroupRoster& Roster() { return roster_; }
  // The signed-in user's stored messages of the conversation go.
  void DeleteStoredHistory(const WString& convId);

  // ===== Friends the conversation side reads =================================
  int RequestFriendList();
  // Rebuilds the friend cache from a friend-profile-list JSON; posts 3183.
  void UpdateFriendList(const std::string& json);
  // Own profile: add permission 2 (requests need confirmation), nothing else.
  int ModifySelfAddPermission();
  std::vector<FriendsList_Stru> Friends() const;
  // Every friend shown to `visit`, in order, nothing copied; `visit` must
  // not call into the service.
  void VisitFriends(const std::function<void(const FriendsList_Stru&)>& visit) const;
  std::optional<FriendsList_Stru> FindFriend(const WString& id) const;
  // Remark, else nickname, else empty.
  static WString FriendDisplayName(const FriendsList_Stru& friendRecord);

  // =====================================================================
  // ===== Sending, pending sends, friendship, drawing sync ==============
  // ===== (service/sending*.cpp, service/pending_sends.*,          ======
  // =====  service/friendship*.cpp, service/drawing_sync*.cpp)     ======
  // =====================================================================

  // --- Sending ---
  // Each builds one element and hands it to SendMsg; false when it was refused.
  bool OnSendTextElem(const WString& convId, uint32_t convType, const WString& text);
  bool OnSendImageElem(const WString& convId, uint32_t convType, const WString& imagePath);
  bool OnSendFileElem(const WString& convId, uint32_t convType, const WString& filePath,
                      const WString& fileName, int64_t fileSize);
  // Sends the uploaded drawing. A `placeholderLocalId` from SendFakeMsg hands
  // its local id (and its place in the view) to the real message; 0 or an
  // unknown id gives the message a new one.
  bool OnSenddrawingFileElem(const WString& convId, uint32_t convType,
                             const DrawingMsgStru& drawing, uint32_t placeholderLocalId);
  // The local placeholder of a drawing being uploaded; returns its local id.
  uint32_t SendFakeMsg(const WString& convId, uint32_t convType, const DrawingMsgStru& drawing);
  // The upload behind a placeholder failed: it becomes a failed send (status
  // 3, 3164 posted) and can no longer be taken over. False when `localId` is
  // not a placeholder waiting for its drawing.
  bool FailPlaceholder(uint32_t localId);
  // Window thread. `pending.local_id` naming a placeholder takes it over;
  // otherwise the message gets a new local id. On success `pending` holds the
  // id and status 1 and the message is in the conversation's list.
  bool SendMsg(const WString& convId, uint32_t convType, const Json::Value& elemArray,
               MessageStru& pending);
  // Result of a send (any thread): stores the message, or adds the failure notice.
  void OnSendMsgUpdateCallback(const std::string& resultJson, MessageStru& pending, int32_t code);
  // The local id counter shared by sent messages and local notices (any thread).
  uint32_t NextLocalId();
  // A send by local id: sending (1), sent (2) or failed (3); a placeholder is
  // 1 until its drawing is sent. Settled sends stay findable for a while
  // (service::PendingSends::kSettledKept) so that the window can read them on 3164.
  std::optional<MessageStru> FindPendingSend(uint32_t localId) const;
  // How far the upload of a send in flight has got, until it settles.
  std::optional<UploadProgress> FindUpload(uint32_t localId) const;
  static void TIMMsgSendNewMsgFunc(int32_t code, const char* desc, const char* json, void* user);
  static void TIMSetMsgElemUploadProgressCallbackFunc(const char* json, uint32_t index,
                                                      uint32_t curSize, uint32_t totalSize,
                                                      void* user);

  // --- Friendship ---
  // Each returns the SDK call's result (0: request accepted).
  // `wording` is replaced by "<own nickname> 请求添加你为好友。".
  int AddFriend(const WString& id, const WString& source, const WString& wording);
  // A page from the stored sequence. `variant` 1 posts 3166 with the page, 2 posts 3186.
  int RequestPendencyList(int variant);
  int ReportPendencyReaded(uint64_t timeStamp);
  // Host's RemoveCloudFriend first, then the SDK; the cache entry goes when
  // the SDK accepted the request.
  int DeleteFriend(const WString& id);
  int ModifyFriendRemark(const WString& id, const WString& remark);
  int RequestUserProfiles(const std::vector<WString>& ids);
  int HandleFriendAddRequest(const WString& id, const WString& remark, const WString& groupName);
  // Accepts the request; on an accepted call sets `record`'s handled flag
  // (and the cached entry's) and posts 3167. Null does nothing.
  void AgreeToAddFriends(PendingFriendRequest* record);
  // DeleteFriend, then the conversation and its history go as well.
  void FriendList_DeleteFriend(const WString& id);
  // Window thread, SdkEventRecord of kind 1.
  void OnFriendAddRequest(const SdkEventRecord& record);
  // Window thread, 3197: the ids (UTF-8 JSON array) leave the friend cache.
  void OnFriendsDeleted(const std::string& json, service::SessionStamp session);
  std::vector<PendingFriendRequest> PendingRequests() const;
  uint64_t PendencySequence() const;
  std::optional<UserProfile> FindProfile(const WString& id) const;
  // A person's name: the friend's display name, else the profile's nickname,
  // else the id itself.
  WString PersonName(const WString& id) const;

  // --- Drawing sync ---
  // Registered with the host at start-up: sends a drawing-sync payload to the
  // host's current shared conversation. Any thread, signed in or not.
  bool sendChatDrawingMsg(const WString& payload);
  // What received drawing payloads ask of the host (pushed messages only).
  DrawingPayloadHandler* ReceivedDrawingHandler();

 private:
  // Start-up pieces.
  void SetConfig();
  void InitSdk();
  void RegisterSdkCallbacks();
  void RegisterHostCallbacks();
  void OnLoginSucceeded(service::SessionStamp session);
  void OpenDatabase(service::SessionStamp session);
  // What ClearResource and the start of a session empty (under the session's lock).
  void ClearCaches();

  // Receiving pieces.
  void ReceiveMessages(const SdkEventRecord& record, service::SessionStamp session);
  void CheckDrawingSync(std::vector<MessageStru>& messages, service::SessionStamp session);
  void HandleGroupEvents(const MessageStru& message, service::SessionStamp session);
  void StoreReminder(const MessageStru& context, const WString& text,
                     service::SessionStamp session);
  // `notify`: flash the host window for a peer's message; `pushed`: not
  // fetched history (counted unread, the unread dot redrawn).
  void AcceptConversationMessages(const WString& convId, uint32_t convType,
                                  std::vector<MessageStru> messages, bool notify, bool pushed,
                                  service::SessionStamp session);

  // Conversation pieces.
  void DealConvList(const std::string& json, service::SessionStamp session);
  void UnregisterSdkCallbacks();

  // Groups.
  void LoadHostGroups(service::SessionStamp session);
  static void TIMGroupActionFunc(int32_t code, const char* desc, const char* json, void* user);
  void FollowUpGroupAction(const host::GroupActionRequest& request, const GroupDetail& group);
  bool CreateImGroup(const WString& name, const CloudMemberList& members,
                     const CloudGroupInfo& created);

  static CChatTools* From(void* user) { return static_cast<CChatTools*>(user); }

  // Sending pieces (sending*.cpp).
  void HandleSendResult(uint32_t localId, const service::SendResult& result);
  void AddSendFailureNotice(const MessageStru& failed, const WString& text);
  MessageStru StoredSentMessage(const std::string& resultJson, const MessageStru& pending) const;
  // Friendship results (friendship_callbacks.cpp).
  static void AddFriendFunc(int32_t code, const char* desc, const char* json, void* user);
  static void PendencyListFunc1(int32_t code, const char* desc, const char* json, void* user);
  static void PendencyListFunc2(int32_t code, const char* desc, const char* json, void* user);
  static void ReportPendencyReadedFunc(int32_t code, const char* desc, const char* json,
                                       void* user);
  static void DeleteFriendFunc(int32_t code, const char* desc, const char* json, void* user);
  static void ModifyFriendProfileFunc(int32_t code, const char* desc, const char* json, void* user);
  static void UserProfileListFunc(int32_t code, const char* desc, const char* json, void* user);
  static void HandleFriendAddRequestFunc(int32_t code, const char* desc, const char* json,
                                         void* user);
  void OnPendencyPage(const std::string& json, unsigned notice);
  void OnUserProfiles(const std::string& json);
  void UpdateFriendList(const std::string& json, service::SessionStamp session);
  void OnFriendAddRequest(const SdkEventRecord& record, service::SessionStamp session);
  static void SendChatDrawingMsgFunc(int32_t code, const char* desc, const char* json, void* user);

  CChatDb& store_;
  std::atomic<service::WindowPort*> window_{nullptr};
  std::atomic<uint32_t> network_status_{0};
  std::atomic<bool> callbacks_registered_{false};

  // The parts, each with its own lock.
  service::RecentConversations recent_;
  service::GroupDirectory groups_;
  service::FriendDirectory friends_;
  service::PendingSends sends_;
  service::Downloads downloads_;
  service::GroupRoster roster_;
  service::FaceDownloads faces_;
  // Last: its start and end empty the parts above.
  service::Session session_{[this] { ClearCaches(); }};
};

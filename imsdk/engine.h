#pragma once
// The embedded engine: the process-wide world (world_model.h) plus the one
// client session of this process, answering the Backend requests in-process.
// One mutex guards everything; events and results are reported under it so
// that their order is the order in which things happened.
#include <mutex>
#include <string>
#include <vector>

#include "imsdk/api_objects.h"
#include "imsdk/backend.h"
#include "imsdk/group_change_notifier.h"
#include "imsdk/world_model.h"

namespace imsdk {

class Engine final : public Backend {
 public:
  static Engine& Instance();

  // Backend
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

  // Group changes go to the observer once the lock is released: every
  // entry that may change a group declares a GroupChangesFlush before it
  // takes the lock.
  void SetGroupObserver(GroupObserver* observer) { group_changes_.SetObserver(observer); }
  void FlushGroupChanges() { group_changes_.Flush(); }

  // The world, for EngineControl (engine_control.cpp) and persistence.
  std::mutex& mutex() { return mutex_; }
  WorldData& world() { return world_; }
  const std::string& signed_in() const { return signed_in_; }
  bool network_up() const { return network_up_; }

  // ---- Operations of one account; callers hold mutex(). ----
  // Send `elems` from `actor`; fills `stored` with the sender's copy.
  int SendAsLocked(const std::string& actor, int type, const std::string& conv_id,
                   const Json::Value& elems, Message* stored);
  int FriendRequestLocked(const std::string& from, const std::string& to, const std::string& source,
                          const std::string& wording, const std::string& remark);
  int AnswerRequestLocked(const std::string& owner, const std::string& requester, int action);
  void MakeFriendsLocked(const std::string& a, const std::string& b, const std::string& source,
                         const std::string& wording);
  bool RemoveFriendLocked(const std::string& owner, const std::string& friend_id);
  void MarkReadLocked(const std::string& account, const ConvKey& key, uint64_t up_to_id);
  bool RevokeLocked(const std::string& sender, const ConvKey& key, uint64_t unique_id);
  void ProfileChangedLocked(const std::string& account);
  std::string CreateGroupLocked(const std::string& owner, const std::string& name,
                                const std::string& wanted_id, const std::string& face_url, int type,
                                const std::vector<std::string>& members, int* code);
  int DisbandGroupLocked(const std::string& actor, const std::string& group_id);
  int QuitGroupLocked(const std::string& actor, const std::string& group_id);
  int InviteLocked(const std::string& actor, const std::string& group_id,
                   const std::vector<std::string>& ids, Json::Value* results);
  int KickLocked(const std::string& actor, const std::string& group_id,
                 const std::vector<std::string>& ids, Json::Value* results);
  int ModifyGroupLocked(const std::string& actor, const std::string& group_id,
                        const std::string* name, const std::string* face, const std::string* owner);
  void SetNetworkLocked(bool up);
  bool KickSignedInLocked();
  bool ExpireSignatureLocked();
  void ResetLocked();
  // Saves to the autosave path when set; returns the error text.
  std::string ChangedLocked();
  void SetAutoSavePathLocked(const std::string& path) { autosave_path_ = path; }
  uint64_t NewMessageIdLocked();
  std::string MessageJsonLocked(const Message& msg, const std::string& viewer) const;
  std::string ProfileJsonLocked(const std::string& account) const;
  uint64_t NowSeconds() const;

 private:
  Engine();
  // Posts an event when `account` is the signed-in one.
  void NotifyLocked(const std::string& account, Event event);
  // Answers `done` with the failure queued for `function`, if any.
  bool QueuedFailureLocked(const char* function, const ResultFn& done);
  // Answers `done` with TIM_ERR_NETWORK while the network is down.
  bool NetworkDownLocked(const ResultFn& done);
  // Common entry check of requests that need a signed-in account.
  int CheckSessionLocked() const;
  Account& SelfLocked() { return world_.accounts.at(signed_in_); }
  // Stores `msg` in the conversation of `owner`; pushes it when signed in.
  void DeliverLocked(const std::string& owner, const ConvKey& key, Message msg, bool from_owner);
  static std::string ReplyableText(const Json::Value& elem);
  void ScheduleAutoReplyLocked(const std::string& responder, const ConvKey& key,
                               const Message& received);
  // Uploads the files of image and file elements; returns a result code.
  int UploadElemsLocked(const std::string& actor, Json::Value* elems,
                        std::vector<std::pair<uint32_t, uint64_t>>* uploads);
  // Queues the change for the observer and holds the callbacks that follow
  // (its tips, the request's result) until the observer has seen it.
  void GroupChangedLocked(GroupChange change);
  void PostGroupTipLocked(const Group& group, const std::string& actor, Json::Value elem,
                          const std::vector<std::string>& extra_receivers);
  Json::Value GroupTipElemLocked(const Group& group, int tip_type, const std::string& actor,
                                 const std::vector<std::string>& users) const;
  std::string ConversationJsonLocked(const std::string& owner, const ConvKey& key,
                                     const Conversation& conv) const;
  Json::Value MessageValueLocked(const Message& msg, const std::string& viewer) const;
  Json::Value ProfileValueLocked(const Account& account) const;
  Json::Value BriefProfileLocked(const std::string& id) const;
  Json::Value GroupValueLocked(const Group& group) const;
  static GroupFields GroupFieldsOf(const Group& group);
  Json::Value MemberValueLocked(const GroupMember& member) const;
  Json::Value FriendValueLocked(const Friend& f) const;
  Json::Value PendencyValueLocked(const Pendency& p) const;
  Account* FindAccountLocked(const std::string& id);

  std::mutex mutex_;
  WorldData world_;
  EventSink* sink_ = nullptr;
  std::string signed_in_;
  std::string session_signature_;
  bool network_up_ = true;
  std::string autosave_path_;
  GroupChangeNotifier group_changes_;
};

// Delivers the group changes made under the engine's lock when it goes out
// of scope; declared before the lock, it runs after the lock is released.
class GroupChangesFlush {
 public:
  explicit GroupChangesFlush(Engine& engine) : engine_(engine) {}
  ~GroupChangesFlush() { engine_.FlushGroupChanges(); }
  GroupChangesFlush(const GroupChangesFlush&) = delete;
  GroupChangesFlush& operator=(const GroupChangesFlush&) = delete;

 private:
  Engine& engine_;
};

}  // namespace imsdk

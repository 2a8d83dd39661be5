#pragma once
// C++ control of the embedded engine, for tests and the demo: it plays the
// server and every other user. The world lives for the whole process,
// across TIMInit/TIMUninit, like a server would; Reset empties it.
//
// Every action that concerns the signed-in account reaches it through the
// SDK's callbacks exactly as a real event would (new messages, friend
// requests, group tips...).
#include <cstdint>
#include <string>
#include <vector>

#include "imsdk/group_observer.h"
#include "imsdk/im_sdk.h"

namespace imsdk {

struct AccountOptions {
  std::string nick;
  std::string face_url;
  int add_permission = kTIMAddPermission_NeedConfirm;
  std::string signature;  // empty: any signature signs in
};

class IMSDK_API EngineControl {
 public:
  static EngineControl& Instance();

  // --- The world ---------------------------------------------------------
  // Empties the world, the queued failures and the network state (up); the
  // signed-in account, if any, is signed out without a callback.
  void Reset();
  // False when the id is empty, too long or taken.
  bool CreateAccount(const std::string& id, const AccountOptions& options = {});
  bool HasAccount(const std::string& id) const;
  // Changes nick, face and add permission; friends who are signed in get
  // the profile-update callback.
  bool UpdateProfile(const std::string& id, const AccountOptions& options);
  void SetSignature(const std::string& id, const std::string& signature);
  // Both list each other; the signed-in one is told.
  bool MakeFriends(const std::string& a, const std::string& b);
  // `owner` stops listing `friend_id` (one-sided, as TIMFriendshipDeleteFriend type 0).
  bool RemoveFriend(const std::string& owner, const std::string& friend_id);
  // `from` asks `to` for friendship, following `to`'s add permission.
  // Returns the friend_result_code (0 friends now, TIM_FRIEND_RESULT_PENDING...).
  int RequestFriend(const std::string& from, const std::string& to, const std::string& wording,
                    const std::string& source = "control");
  // `owner` answers the request of `requester` (TIMFriendshipHandleFriendAddRequest actions).
  int AnswerFriendRequest(const std::string& owner, const std::string& requester, int action);

  // Groups; the owner/actor acts as in the TIMGroup... functions. Returns the
  // group id ("" on failure) or a TIM result code.
  std::string CreateGroup(const std::string& owner, const std::string& name,
                          const std::vector<std::string>& members,
                          const std::string& group_id = "");
  int RenameGroup(const std::string& actor, const std::string& group_id, const std::string& name);
  int TransferGroupOwner(const std::string& actor, const std::string& group_id,
                         const std::string& new_owner);
  int AddGroupMembers(const std::string& actor, const std::string& group_id,
                      const std::vector<std::string>& ids);
  int RemoveGroupMembers(const std::string& actor, const std::string& group_id,
                         const std::vector<std::string>& ids);
  int QuitGroup(const std::string& actor, const std::string& group_id);
  int DisbandGroup(const std::string& actor, const std::string& group_id);
  // Every group change from now on goes to `observer` (null: to nobody);
  // group_observer.h says when and on which thread. Not part of the world:
  // Reset keeps it. The caller keeps the observer alive until it is
  // replaced; once this returns the previous one is not called any more.
  void SetGroupObserver(GroupObserver* observer);

  // --- Messages as another account -------------------------------------
  // Each returns the send result code (0 delivered) and the message id.
  int SendText(const std::string& from, int conv_type, const std::string& conv_id,
               const std::string& text, uint64_t* unique_id = nullptr);
  int SendImage(const std::string& from, int conv_type, const std::string& conv_id,
                const std::string& local_path, uint64_t* unique_id = nullptr);
  int SendFile(const std::string& from, int conv_type, const std::string& conv_id,
               const std::string& local_path, uint64_t* unique_id = nullptr);
  int SendCustom(const std::string& from, int conv_type, const std::string& conv_id,
                 const std::string& data, uint64_t* unique_id = nullptr);
  // Any element array, as TIMMsgSendNewMsg takes it (JSON text).
  int SendElems(const std::string& from, int conv_type, const std::string& conv_id,
                const std::string& json_elem_array, uint64_t* unique_id = nullptr);
  // `account` reads the conversation: unread cleared, the sender told.
  bool MarkRead(const std::string& account, int conv_type, const std::string& conv_id);
  // The sender revokes a message; the signed-in peer gets the revoke callback.
  bool RevokeMessage(const std::string& sender, int conv_type, const std::string& conv_id,
                     uint64_t unique_id);

  // --- Failures and the session -----------------------------------------
  // The next call of `function` (e.g. "TIMLogin") returns `code` and does nothing.
  void FailNextCall(const std::string& function, int code);
  // The next accepted call of `function` answers `code` in its callback and
  // does nothing (e.g. "TIMMsgSendNewMsg" with 9519).
  void FailNextResult(const std::string& function, int code);
  void ClearQueuedFailures();
  // Network down: status callback kTIMDisconnected; requests that need the
  // server answer TIM_ERR_NETWORK. Up: kTIMConnecting then kTIMConnected.
  void SetNetworkUp(bool up);
  bool NetworkUp() const;
  // Ends the signed-in session with the kicked-offline callback.
  bool KickSignedIn();
  // The signed-in account's signature expires (callback; next login refused).
  bool ExpireSignature();
  std::string SignedInAccount() const;

  // --- Inspection ------------------------------------------------------
  std::vector<std::string> FriendsOf(const std::string& account) const;
  // Incoming and outgoing friend requests of the account.
  size_t PendencyCount(const std::string& account) const;
  bool HasConversation(const std::string& account, int conv_type, const std::string& conv_id) const;
  uint64_t UnreadCount(const std::string& account, int conv_type, const std::string& conv_id) const;
  size_t MessageCount(const std::string& account, int conv_type, const std::string& conv_id) const;
  // The newest message as the account sees it (message JSON), "" when none.
  std::string LastMessageJson(const std::string& account, int conv_type,
                              const std::string& conv_id) const;
  std::string GroupName(const std::string& group_id) const;
  std::string GroupOwner(const std::string& group_id) const;
  std::vector<std::string> GroupMembers(const std::string& group_id) const;
  std::string ProfileJson(const std::string& account) const;
  size_t StoredFileCount() const;

  // --- Persistence and the scripted peer ---------------------------------
  // Writes the world atomically; returns "" or an error text.
  std::string Save(const std::string& path) const;
  // Replaces the world with the file's; a file that does not read completely
  // is refused and the world is left as it was. Returns "" or an error text.
  std::string Load(const std::string& path);
  // Saves after every change (empty path: off). Returns the first save's error.
  std::string SetAutoSave(const std::string& path);
  // `account` answers every text it receives with `prefix` + the text after
  // `delay_ms`, in the same conversation (not texts from another answering account).
  bool SetAutoReply(const std::string& account, int delay_ms, const std::string& prefix);

 private:
  EngineControl() = default;
};

}  // namespace imsdk

#pragma once
// The host's side of the bridge. The host supplies one HostSystem through the
// host runtime library; the module asks HostSystem::instance() each time it
// needs it, walks to one of the two services, uses one operation and forgets
// the pointers. It never owns or frees anything it gets here.
//
// Texts passed in are NUL-terminated UTF-16 strings owned by the caller for
// the duration of the call. Truth values are one byte: true = success.

#include <cstdint>
#include <functional>

#include "host/host_records.h"
#include "platform/window_messages.h"

class HostCloudService {
 public:
  virtual void ReleaseShareTree(ShareTreeSelection* selection) = 0;
  virtual bool IsHostLoggedIn() = 0;
  // `fileName` in/out: looked up by name when given, else by `drawingId`,
  // and filled with the name found; `drawingRef` receives the reference and
  // `drawingId` the id of the drawing found.
  virtual bool QuerySpaceFileByName(int32_t groupId, WString& fileName, WString& drawingRef,
                                    int32_t folderId, int32_t& drawingId) = 0;
  // `errorCode` receives the host's reason on failure (406 or 6: gone).
  virtual bool OpenCloudDrawing(const char16_t* drawingRef, int32_t& errorCode) = 0;
  // `reserved` is always null from the module.
  virtual bool QuerySpaceFile(int32_t groupId, WString& drawingRef, const void* reserved,
                              int32_t folderId, int32_t drawingId) = 0;
  // `stored` receives the id and the reference of the stored drawing; the
  // three zero arguments are reserved.
  virtual bool UploadSpaceFile(int32_t reserved1, const char16_t* localPath,
                               const char16_t* description, int32_t reserved2, SpaceFileRef& stored,
                               int32_t reserved3, int32_t groupId, int32_t folderId) = 0;
  virtual bool DownloadPicture(const char16_t* pictureUrl, const char16_t* localPath) = 0;
  virtual void PrepareAccountForChat(int32_t accountId) = 0;
  // `kind`: 1 = mobile number, 2 = e-mail address.
  virtual bool SearchAccount(const char16_t* account, int32_t kind, AccountInfo& info) = 0;
  virtual int32_t InviteFriend(const char16_t* account, int32_t kind) = 0;
  virtual bool GetAccountInfo(int32_t accountId, AccountInfo& info) = 0;
  virtual void RemoveCloudFriend(int32_t accountId) = 0;
  virtual bool CreateCloudGroup(const char16_t* groupType, const char16_t* name,
                                const CloudMemberList& members, CloudGroupInfo& created) = 0;
  virtual bool GetJoinedGroups(CloudGroupList& groups) = 0;
  virtual bool GetGroupMembers(const char16_t* imGroupId, GroupDetail& detail) = 0;
  virtual bool RenameGroup(int32_t cloudGroupId, const char16_t* newName) = 0;
  virtual bool TransferGroupOwner(int32_t cloudGroupId, int32_t newOwnerId) = 0;
  // `addedCount` receives how many of the members were added.
  virtual bool AddGroupMembers(int32_t cloudGroupId, const CloudMemberList& members,
                               int32_t& addedCount) = 0;
  // `mode`: 1 = removed by the owner, 2 = the user leaves.
  virtual bool RemoveGroupMembers(int32_t cloudGroupId, const CloudMemberList& members,
                                  int32_t mode) = 0;
  virtual bool GetGroupRole(int32_t cloudGroupId, int32_t& role) = 0;
  virtual bool DisbandCloudGroup(int32_t cloudGroupId, int32_t reserved) = 0;
  virtual bool GetGroupInfo(const char16_t* imGroupId, CloudGroupInfo& info) = 0;
  // `allowed` non-zero: the transfer may go ahead; otherwise `reason` says why not.
  virtual void CheckGroupOwnerTransfer(int32_t cloudGroupId, int32_t newOwnerId, int32_t& allowed,
                                       WString& reason) = 0;
  // `mode` is always 1 from the module.
  virtual bool CheckSharedSession(int32_t groupId, int32_t drawingId, int32_t accountId,
                                  int32_t mode, SharedSessionInfo* session) = 0;
  virtual bool JoinSharedSession(int32_t groupId, int32_t drawingId, const char16_t* sessionText,
                                 SharedSessionInfo& session) = 0;
  virtual void LeaveSharedSession(int32_t groupId, int32_t drawingId,
                                  const char16_t* sessionText) = 0;
  // `inSession` receives 1 when the account or group is in a shared session
  // (described by `session`), else 0.
  virtual bool QuerySharedSessionState(int32_t accountOrGroupId, SharedSessionInfo& session,
                                       int32_t& inSession) = 0;
  // The drawings of the group's cloud space, for the share-tree dialog; the
  // dialog hands the record back with ReleaseShareTree when it ends.
  virtual bool FillShareTree(int32_t cloudGroupId, ShareTreeSelection& tree) = 0;

 protected:
  ~HostCloudService() = default;
};

// The module's sender of drawing-sync messages: payload text in, true when sent.
using DrawingMsgSender = std::function<bool(const WString& payload)>;
// The module's recent-conversation provider; it does nothing with null.
using HostNotifyCallback = std::function<void(std::vector<RecentConversationEntry>* list)>;

class HostAppService {
 public:
  virtual bool EnterSharedDrawing(platform::WindowHandle owner, const char16_t* sessionText,
                                  int32_t groupId, int32_t drawingId,
                                  const char16_t* drawingRef) = 0;
  virtual void EndSharedSession() = 0;
  // `instruction` is 2, 3, 4 or 5.
  virtual bool updateChatDrawingInfo(int32_t instruction) = 0;
  virtual bool IsInSharedSession() = 0;
  // Owned by the host; valid until the session changes. Never null.
  virtual const char16_t* GetSessionKey() = 0;
  virtual int32_t GetSessionGroupId() = 0;
  virtual int32_t GetSessionDrawingId() = 0;
  virtual const char16_t* GetSessionText() = 0;
  virtual void ApplyDrawingSync(const char16_t* sender, const char16_t* content,
                                int32_t length) = 0;
  virtual void SetDrawingMsgSender(DrawingMsgSender sender) = 0;
  virtual bool sendDrawingSyncMsg(const char16_t* payload) = 0;
  virtual bool OpenDrawingFile(const char16_t* localPath) = 0;
  virtual void NotifyNewMessage() = 0;
  virtual void SetHostNotifyCallback(HostNotifyCallback callback) = 0;
  virtual void RecordFeatureUse(const char16_t* feature) = 0;
  // The drawing files open in the host, full local paths (the drawing
  // selection dialog offers them first).
  virtual void GetOpenDrawings(std::vector<WString>& paths) = 0;

 protected:
  ~HostAppService() = default;
};

class HostSystem {
 public:
  // The host's singleton, from the host runtime library: the installed host,
  // or the null host (every operation fails, signed out) when none is. Never null.
  static HostSystem* instance();
  // The host installs its implementation once it is ready; null goes back to
  // the null host. Returns the one installed before. The runtime does not own it.
  static HostSystem* Install(HostSystem* host);

  virtual HostCloudService* GetCloudService() = 0;
  virtual HostAppService* GetAppService() = 0;

 protected:
  ~HostSystem() = default;
};

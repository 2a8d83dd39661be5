#pragma once
// The local host's cloud: account directory, friends, cloud groups, a
// drawing space kept in a folder, and other people's shared sessions.

#include "host/local/local_host_state.h"

namespace host::local {

class LocalCloudService final : public HostCloudService {
 public:
  explicit LocalCloudService(LocalHostState& state) : state_(state) {}

  void ReleaseShareTree(ShareTreeSelection* selection) override;
  bool IsHostLoggedIn() override;
  bool QuerySpaceFileByName(int32_t groupId, WString& fileName, WString& drawingRef,
                            int32_t folderId, int32_t& drawingId) override;
  bool OpenCloudDrawing(const char16_t* drawingRef, int32_t& errorCode) override;
  bool QuerySpaceFile(int32_t groupId, WString& drawingRef, const void* reserved, int32_t folderId,
                      int32_t drawingId) override;
  bool UploadSpaceFile(int32_t reserved1, const char16_t* localPath, const char16_t* description,
                       int32_t reserved2, SpaceFileRef& stored, int32_t reserved3, int32_t groupId,
                       int32_t folderId) override;
  bool DownloadPicture(const char16_t* pictureUrl, const char16_t* localPath) override;
  void PrepareAccountForChat(int32_t accountId) override;
  bool SearchAccount(const char16_t* account, int32_t kind, AccountInfo& info) override;
  int32_t InviteFriend(const char16_t* account, int32_t kind) override;
  bool GetAccountInfo(int32_t accountId, AccountInfo& info) override;
  void RemoveCloudFriend(int32_t accountId) override;
  bool CreateCloudGroup(const char16_t* groupType, const char16_t* name,
                        const CloudMemberList& members, CloudGroupInfo& created) override;
  bool GetJoinedGroups(CloudGroupList& groups) override;
  bool GetGroupMembers(const char16_t* imGroupId, GroupDetail& detail) override;
  bool RenameGroup(int32_t cloudGroupId, const char16_t* newName) override;
  bool TransferGroupOwner(int32_t cloudGroupId, int32_t newOwnerId) override;
  bool AddGroupMembers(int32_t cloudGroupId, const CloudMemberList& members,
                       int32_t& addedCount) override;
  bool RemoveGroupMembers(int32_t cloudGroupId, const CloudMemberList& members,
                          int32_t mode) override;
  bool GetGroupRole(int32_t cloudGroupId, int32_t& role) override;
  bool DisbandCloudGroup(int32_t cloudGroupId, int32_t reserved) override;
  bool GetGroupInfo(const char16_t* imGroupId, CloudGroupInfo& info) override;
  void CheckGroupOwnerTransfer(int32_t cloudGroupId, int32_t newOwnerId, int32_t& allowed,
                               WString& reason) override;
  bool CheckSharedSession(int32_t groupId, int32_t drawingId, int32_t accountId, int32_t mode,
                          SharedSessionInfo* session) override;
  bool JoinSharedSession(int32_t groupId, int32_t drawingId, const char16_t* sessionText,
                         SharedSessionInfo& session) override;
  void LeaveSharedSession(int32_t groupId, int32_t drawingId, const char16_t* sessionText) override;
  bool QuerySharedSessionState(int32_t accountOrGroupId, SharedSessionInfo& session,
                               int32_t& inSession) override;
  bool FillShareTree(int32_t cloudGroupId, ShareTreeSelection& tree) override;

 private:
  // The signed-in user's role in the group, or nullopt when not a member.
  std::optional<int32_t> OwnRole(const LocalGroup& group) const;
  const SpaceDrawing* FindDrawing(int32_t groupId, int32_t folderId, int32_t drawingId,
                                  const WString& name) const;

  // Waits the state's `delay` as a transfer would, without holding the host.
  void TakeTime(std::chrono::milliseconds LocalHostState::*delay);

  LocalHostState& state_;
};

}  // namespace host::local

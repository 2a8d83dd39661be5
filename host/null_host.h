#pragma once
// The host that is there when no host is: signed out, no session, and every
// operation answers failure, so each caller stays on its failure path.

#include "host/host_system.h"

namespace host {

class NullCloudService final : public HostCloudService {
 public:
  void ReleaseShareTree(ShareTreeSelection*) override {}
  bool IsHostLoggedIn() override { return false; }
  bool QuerySpaceFileByName(int32_t, WString&, WString&, int32_t, int32_t&) override {
    return false;
  }
  bool OpenCloudDrawing(const char16_t*, int32_t&) override { return false; }
  bool QuerySpaceFile(int32_t, WString&, const void*, int32_t, int32_t) override { return false; }
  bool UploadSpaceFile(int32_t, const char16_t*, const char16_t*, int32_t, SpaceFileRef&, int32_t,
                       int32_t, int32_t) override {
    return false;
  }
  bool DownloadPicture(const char16_t*, const char16_t*) override { return false; }
  void PrepareAccountForChat(int32_t) override {}
  bool SearchAccount(const char16_t*, int32_t, AccountInfo&) override { return false; }
  int32_t InviteFriend(const char16_t*, int32_t) override { return -1; }
  bool GetAccountInfo(int32_t, AccountInfo&) override { return false; }
  void RemoveCloudFriend(int32_t) override {}
  bool CreateCloudGroup(const char16_t*, const char16_t*, const CloudMemberList&,
                        CloudGroupInfo&) override {
    return false;
  }
  bool GetJoinedGroups(CloudGroupList&) override { return false; }
  bool GetGroupMembers(const char16_t*, GroupDetail&) override { return false; }
  bool RenameGroup(int32_t, const char16_t*) override { return false; }
  bool TransferGroupOwner(int32_t, int32_t) override { return false; }
  bool AddGroupMembers(int32_t, const CloudMemberList&, int32_t&) override { return false; }
  bool RemoveGroupMembers(int32_t, const CloudMemberList&, int32_t) override { return false; }
  bool GetGroupRole(int32_t, int32_t&) override { return false; }
  bool DisbandCloudGroup(int32_t, int32_t) override { return false; }
  bool GetGroupInfo(const char16_t*, CloudGroupInfo&) override { return false; }
  void CheckGroupOwnerTransfer(int32_t, int32_t, int32_t& allowed, WString&) override {
    allowed = 0;
  }
  bool CheckSharedSession(int32_t, int32_t, int32_t, int32_t, SharedSessionInfo*) override {
    return false;
  }
  bool JoinSharedSession(int32_t, int32_t, const char16_t*, SharedSessionInfo&) override {
    return false;
  }
  void LeaveSharedSession(int32_t, int32_t, const char16_t*) override {}
  bool QuerySharedSessionState(int32_t, SharedSessionInfo&, int32_t& inSession) override {
    inSession = 0;
    return false;
  }
  bool FillShareTree(int32_t, ShareTreeSelection&) override { return false; }
};

class NullAppService final : public HostAppService {
 public:
  bool EnterSharedDrawing(platform::WindowHandle, const char16_t*, int32_t, int32_t,
                          const char16_t*) override {
    return false;
  }
  void EndSharedSession() override {}
  bool updateChatDrawingInfo(int32_t) override { return false; }
  bool IsInSharedSession() override { return false; }
  const char16_t* GetSessionKey() override { return u""; }
  int32_t GetSessionGroupId() override { return -1; }
  int32_t GetSessionDrawingId() override { return -1; }
  const char16_t* GetSessionText() override { return u""; }
  void ApplyDrawingSync(const char16_t*, const char16_t*, int32_t) override {}
  void SetDrawingMsgSender(DrawingMsgSender) override {}
  bool sendDrawingSyncMsg(const char16_t*) override { return false; }
  bool OpenDrawingFile(const char16_t*) override { return false; }
  void NotifyNewMessage() override {}
  void SetHostNotifyCallback(HostNotifyCallback) override {}
  void RecordFeatureUse(const char16_t*) override {}
  void GetOpenDrawings(std::vector<WString>& paths) override { paths.clear(); }
};

class NullHostSystem final : public HostSystem {
 public:
  HostCloudService* GetCloudService() override { return &cloud_; }
  HostAppService* GetAppService() override { return &app_; }

 private:
  NullCloudService cloud_;
  NullAppService app_;
};

}  // namespace host

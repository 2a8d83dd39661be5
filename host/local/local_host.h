#pragma once
// A host that lives in the process, for the demo application and the tests:
// an account directory, friendships, cloud groups mirrored from the chat
// engine, a cloud drawing space in a folder, a shared session that can be set
// from outside, and a record of every call and feature-use event.
// Not part of the module: the module only ever sees HostSystem.

#include <chrono>
#include <string>
#include <vector>

#include "host/local/group_mirror.h"
#include "host/local/local_app_service.h"
#include "host/local/local_cloud_service.h"
#include "host/local/local_host_state.h"

namespace host::local {

class LocalHost final : public HostSystem, public GroupMirror {
 public:
  // `spaceFolder` holds the cloud drawing space (created on first upload).
  explicit LocalHost(std::string spaceFolder);
  // Uninstalls itself when it is still the installed host.
  ~LocalHost();
  LocalHost(const LocalHost&) = delete;
  LocalHost& operator=(const LocalHost&) = delete;

  void Install();
  void Uninstall();

  HostCloudService* GetCloudService() override;
  HostAppService* GetAppService() override;
  // A host that hands out no cloud or no app service.
  void SetServicesAvailable(bool cloud, bool app);

  // Account directory and sign-in.
  void AddAccount(LocalAccount account);
  // The account's avatar becomes the picture file at `path`.
  void SetAvatar(int32_t accountId, const WString& path);
  void MakeFriends(int32_t a, int32_t b);
  void SignIn(int32_t accountId);
  void SignOut();

  // The named operation answers failure (void ones do nothing) until cleared.
  void FailOperation(const std::string& name, bool fail = true);

  // Shared sessions: the user's own (as if entered in the host), and that of
  // another account or group (for QuerySharedSessionState/CheckSharedSession).
  void SetSharedSession(const SharedSessionInfo& session);
  void ClearSharedSession();
  void SetSessionOf(int32_t accountOrGroupId, const SharedSessionInfo& session);
  // Who is in the group's shared session (JoinSharedSession adds the
  // signed-in account); another account joining or leaving as in the host.
  std::vector<int32_t> SessionMembers(int32_t groupId) const;
  void SetSessionMembers(int32_t groupId, std::vector<int32_t> accountIds);
  // The drawing files the host has open (GetOpenDrawings).
  void SetOpenDrawings(std::vector<WString> paths);
  // An upload takes this long before it starts, as a real transfer would
  // (the demo shows the wait window). Default: none.
  void SetUploadDelay(std::chrono::milliseconds delay);
  // A picture download takes this long before it starts. Default: none.
  void SetDownloadDelay(std::chrono::milliseconds delay);
  // The user's own shared session, when the host is in one.
  std::optional<SharedSessionInfo> OwnSession() const;
  // The file name of a drawing of the space, empty when the reference is unknown.
  WString DrawingNameOf(const WString& drawingRef) const;
  // The first drawing of the space with that file name.
  std::optional<SpaceDrawing> SpaceDrawingNamed(const WString& name) const;

  // What the host does with the module's callbacks.
  bool SendDrawingMsgThroughModule(const WString& payload);  // false when none registered
  std::vector<RecentConversationEntry> CollectRecentConversations();

  // Inspection.
  std::vector<HostCall> Calls() const;
  std::vector<std::string> CallNames() const;
  void ClearCalls();
  std::vector<WString> FeatureUses() const;
  std::vector<std::pair<WString, int32_t>> Invitations() const;
  std::vector<std::pair<WString, WString>> AppliedSyncs() const;
  std::vector<WString> SentSyncs() const;
  std::vector<int32_t> DrawingInfoUpdates() const;
  std::vector<WString> OpenedCloudDrawings() const;
  std::optional<GroupDetail> FindGroup(const WString& imGroupId) const;
  // The first group of that name (the demo finds the group a user made).
  std::optional<GroupDetail> FindGroupNamed(const WString& name) const;
  std::optional<AccountInfo> FindAccount(int32_t accountId) const;
  int NewMessageNotices() const;

  // GroupMirror: changes made in the chat engine.
  void OnGroupCreated(const WString& imGroupId, const WString& name, const WString& ownerImUserId,
                      const std::vector<WString>& memberImUserIds) override;
  void OnMembersJoined(const WString& imGroupId,
                       const std::vector<WString>& memberImUserIds) override;
  void OnMembersLeft(const WString& imGroupId,
                     const std::vector<WString>& memberImUserIds) override;
  void OnGroupRenamed(const WString& imGroupId, const WString& name) override;
  void OnOwnerChanged(const WString& imGroupId, const WString& newOwnerImUserId) override;
  void OnGroupDismissed(const WString& imGroupId) override;

 private:
  LocalHostState state_;
  LocalCloudService cloud_{state_};
  LocalAppService app_{state_};
  bool cloudAvailable_ = true;
  bool appAvailable_ = true;
};

}  // namespace host::local

#include "host/local/local_host.h"

#include <algorithm>

namespace host::local {
namespace {

using Lock = std::lock_guard<std::mutex>;

template <class T>
T Copy(const LocalHostState& state, const T& field) {
  Lock lock(state.mutex);
  return field;
}

}  // namespace

LocalHost::LocalHost(std::string spaceFolder) {
  state_.spaceFolder = std::move(spaceFolder);
}

LocalHost::~LocalHost() {
  Uninstall();
}

void LocalHost::Install() {
  HostSystem::Install(this);
}

void LocalHost::Uninstall() {
  if (HostSystem::instance() == this) HostSystem::Install(nullptr);
}

HostCloudService* LocalHost::GetCloudService() {
  Lock lock(state_.mutex);
  return cloudAvailable_ ? &cloud_ : nullptr;
}

HostAppService* LocalHost::GetAppService() {
  Lock lock(state_.mutex);
  return appAvailable_ ? &app_ : nullptr;
}

void LocalHost::SetServicesAvailable(bool cloud, bool app) {
  Lock lock(state_.mutex);
  cloudAvailable_ = cloud;
  appAvailable_ = app;
}

void LocalHost::AddAccount(LocalAccount account) {
  Lock lock(state_.mutex);
  state_.accounts[account.id] = std::move(account);
}

void LocalHost::SetAvatar(int32_t accountId, const WString& path) {
  Lock lock(state_.mutex);
  if (auto it = state_.accounts.find(accountId); it != state_.accounts.end()) {
    it->second.avatarPath = path;
  }
}

void LocalHost::MakeFriends(int32_t a, int32_t b) {
  Lock lock(state_.mutex);
  state_.friendships.insert({std::min(a, b), std::max(a, b)});
}

void LocalHost::SignIn(int32_t accountId) {
  Lock lock(state_.mutex);
  state_.signedIn = accountId;
}

void LocalHost::SignOut() {
  Lock lock(state_.mutex);
  state_.signedIn.reset();
}

void LocalHost::FailOperation(const std::string& name, bool fail) {
  Lock lock(state_.mutex);
  if (fail) {
    state_.failing.insert(name);
  } else {
    state_.failing.erase(name);
  }
}

void LocalHost::SetSharedSession(const SharedSessionInfo& session) {
  Lock lock(state_.mutex);
  state_.session = session;
  state_.inSession = true;
}

void LocalHost::ClearSharedSession() {
  Lock lock(state_.mutex);
  state_.session = SharedSessionInfo{};
  state_.inSession = false;
}

void LocalHost::SetSessionOf(int32_t accountOrGroupId, const SharedSessionInfo& session) {
  Lock lock(state_.mutex);
  state_.othersSessions[accountOrGroupId] = session;
}

std::vector<int32_t> LocalHost::SessionMembers(int32_t groupId) const {
  Lock lock(state_.mutex);
  auto it = state_.sessionMembers.find(groupId);
  return it != state_.sessionMembers.end() ? it->second : std::vector<int32_t>{};
}

void LocalHost::SetSessionMembers(int32_t groupId, std::vector<int32_t> accountIds) {
  Lock lock(state_.mutex);
  state_.othersSessions[groupId].participants = static_cast<int32_t>(accountIds.size());
  state_.sessionMembers[groupId] = std::move(accountIds);
}

void LocalHost::SetOpenDrawings(std::vector<WString> paths) {
  Lock lock(state_.mutex);
  state_.openDrawings = std::move(paths);
}

void LocalHost::SetUploadDelay(std::chrono::milliseconds delay) {
  Lock lock(state_.mutex);
  state_.uploadDelay = delay;
}

void LocalHost::SetDownloadDelay(std::chrono::milliseconds delay) {
  Lock lock(state_.mutex);
  state_.downloadDelay = delay;
}

std::optional<SharedSessionInfo> LocalHost::OwnSession() const {
  Lock lock(state_.mutex);
  if (!state_.inSession) return std::nullopt;
  return state_.session;
}

WString LocalHost::DrawingNameOf(const WString& drawingRef) const {
  Lock lock(state_.mutex);
  for (const SpaceDrawing& drawing : state_.drawings) {
    if (RefOf(drawing) == drawingRef) return drawing.name;
  }
  return WString();
}

std::optional<SpaceDrawing> LocalHost::SpaceDrawingNamed(const WString& name) const {
  Lock lock(state_.mutex);
  for (const SpaceDrawing& drawing : state_.drawings) {
    if (drawing.name == name) return drawing;
  }
  return std::nullopt;
}

// The callbacks are called without the lock: they may well call back into the host.
bool LocalHost::SendDrawingMsgThroughModule(const WString& payload) {
  const DrawingMsgSender sender = Copy(state_, state_.drawingMsgSender);
  return sender ? sender(payload) : false;
}

std::vector<RecentConversationEntry> LocalHost::CollectRecentConversations() {
  const HostNotifyCallback callback = Copy(state_, state_.notifyCallback);
  std::vector<RecentConversationEntry> list;
  if (callback) callback(&list);
  return list;
}

std::vector<HostCall> LocalHost::Calls() const {
  return Copy(state_, state_.calls);
}

std::vector<std::string> LocalHost::CallNames() const {
  std::vector<std::string> names;
  for (const HostCall& call : Calls()) names.push_back(call.name);
  return names;
}

void LocalHost::ClearCalls() {
  Lock lock(state_.mutex);
  state_.calls.clear();
}

std::vector<WString> LocalHost::FeatureUses() const {
  return Copy(state_, state_.featureUses);
}

std::vector<std::pair<WString, int32_t>> LocalHost::Invitations() const {
  return Copy(state_, state_.invitations);
}

std::vector<std::pair<WString, WString>> LocalHost::AppliedSyncs() const {
  return Copy(state_, state_.appliedSyncs);
}

std::vector<WString> LocalHost::SentSyncs() const {
  return Copy(state_, state_.sentSyncs);
}

std::vector<int32_t> LocalHost::DrawingInfoUpdates() const {
  return Copy(state_, state_.drawingInfoUpdates);
}

std::vector<WString> LocalHost::OpenedCloudDrawings() const {
  return Copy(state_, state_.openedCloudDrawings);
}

std::optional<GroupDetail> LocalHost::FindGroup(const WString& imGroupId) const {
  Lock lock(state_.mutex);
  const LocalGroup* group = state_.FindGroup(imGroupId);
  if (group == nullptr) return std::nullopt;
  return state_.Detail(*group);
}

std::optional<GroupDetail> LocalHost::FindGroupNamed(const WString& name) const {
  Lock lock(state_.mutex);
  for (const auto& [id, group] : state_.groups) {
    if (group.name == name) return state_.Detail(group);
  }
  return std::nullopt;
}

std::optional<AccountInfo> LocalHost::FindAccount(int32_t accountId) const {
  Lock lock(state_.mutex);
  auto it = state_.accounts.find(accountId);
  if (it == state_.accounts.end()) return std::nullopt;
  return state_.Describe(it->second);
}

int LocalHost::NewMessageNotices() const {
  return Copy(state_, state_.newMessageNotices);
}

void LocalHost::OnGroupCreated(const WString& imGroupId, const WString& name,
                               const WString& ownerImUserId,
                               const std::vector<WString>& memberImUserIds) {
  Lock lock(state_.mutex);
  LocalGroup* group = state_.FindGroup(imGroupId);
  if (group == nullptr) {
    LocalGroup created;
    created.cloudGroupId = state_.nextGroupId++;
    created.imGroupId = imGroupId;
    group = &state_.groups.emplace(created.cloudGroupId, std::move(created)).first->second;
  }
  group->name = name;
  for (const WString& member : memberImUserIds) {
    const int32_t id = AccountIdOf(member);
    if (id >= 0) group->roles.emplace(id, 0);
  }
  const int32_t owner = AccountIdOf(ownerImUserId);
  if (owner >= 0) {
    for (auto& [id, role] : group->roles) role = 0;
    group->roles[owner] = 1;
  }
}

void LocalHost::OnMembersJoined(const WString& imGroupId,
                                const std::vector<WString>& memberImUserIds) {
  Lock lock(state_.mutex);
  LocalGroup* group = state_.FindGroup(imGroupId);
  if (group == nullptr) return;
  for (const WString& member : memberImUserIds) {
    const int32_t id = AccountIdOf(member);
    if (id >= 0) group->roles.emplace(id, 0);
  }
}

void LocalHost::OnMembersLeft(const WString& imGroupId,
                              const std::vector<WString>& memberImUserIds) {
  Lock lock(state_.mutex);
  LocalGroup* group = state_.FindGroup(imGroupId);
  if (group == nullptr) return;
  for (const WString& member : memberImUserIds) group->roles.erase(AccountIdOf(member));
}

void LocalHost::OnGroupRenamed(const WString& imGroupId, const WString& name) {
  Lock lock(state_.mutex);
  if (LocalGroup* group = state_.FindGroup(imGroupId)) group->name = name;
}

void LocalHost::OnOwnerChanged(const WString& imGroupId, const WString& newOwnerImUserId) {
  Lock lock(state_.mutex);
  LocalGroup* group = state_.FindGroup(imGroupId);
  const int32_t owner = AccountIdOf(newOwnerImUserId);
  if (group == nullptr || owner < 0) return;
  for (auto& [id, role] : group->roles) role = 0;
  group->roles[owner] = 1;
}

void LocalHost::OnGroupDismissed(const WString& imGroupId) {
  Lock lock(state_.mutex);
  if (const LocalGroup* group = state_.FindGroup(imGroupId)) {
    state_.groups.erase(group->cloudGroupId);
  }
}

}  // namespace host::local

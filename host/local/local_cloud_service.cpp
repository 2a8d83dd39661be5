#include "host/local/local_cloud_service.h"

#include <filesystem>
#include <system_error>
#include <thread>

namespace host::local {
namespace {

namespace fs = std::filesystem;
using Lock = std::lock_guard<std::mutex>;

std::string Args(std::initializer_list<std::string> parts) {
  std::string joined;
  for (const std::string& part : parts) {
    if (!joined.empty()) joined += ',';
    joined += part;
  }
  return joined;
}

std::string Num(int64_t value) {
  return std::to_string(value);
}

fs::path PathOf(const char16_t* text) {
  return fs::path(platform::Utf16ToUtf8(text));
}

bool CopyFile(const fs::path& from, const fs::path& to) {
  std::error_code error;
  if (!fs::is_regular_file(from, error)) return false;
  if (to.has_parent_path()) fs::create_directories(to.parent_path(), error);
  return fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
}

}  // namespace

std::optional<int32_t> LocalCloudService::OwnRole(const LocalGroup& group) const {
  if (!state_.signedIn) return std::nullopt;
  auto it = group.roles.find(*state_.signedIn);
  if (it == group.roles.end()) return std::nullopt;
  return it->second;
}

const SpaceDrawing* LocalCloudService::FindDrawing(int32_t groupId, int32_t folderId,
                                                   int32_t drawingId, const WString& name) const {
  for (const SpaceDrawing& drawing : state_.drawings) {
    if (drawing.groupId != groupId || drawing.folderId != folderId) continue;
    if (name.empty() ? drawing.drawingId == drawingId : drawing.name == name) return &drawing;
  }
  return nullptr;
}

void LocalCloudService::ReleaseShareTree(ShareTreeSelection* selection) {
  Lock lock(state_.mutex);
  state_.Record("ReleaseShareTree");
  if (selection != nullptr) *selection = ShareTreeSelection{};
}

bool LocalCloudService::IsHostLoggedIn() {
  Lock lock(state_.mutex);
  return state_.Record("IsHostLoggedIn") && state_.SignedIn();
}

bool LocalCloudService::QuerySpaceFileByName(int32_t groupId, WString& fileName,
                                             WString& drawingRef, int32_t folderId,
                                             int32_t& drawingId) {
  Lock lock(state_.mutex);
  if (!state_.Record("QuerySpaceFileByName", Args({Num(groupId), Num(folderId), Num(drawingId)})) ||
      !state_.SignedIn()) {
    return false;
  }
  const SpaceDrawing* drawing = FindDrawing(groupId, folderId, drawingId, fileName);
  if (drawing == nullptr) return false;
  fileName = drawing->name;
  drawingRef = RefOf(*drawing);
  drawingId = drawing->drawingId;
  return true;
}

bool LocalCloudService::OpenCloudDrawing(const char16_t* drawingRef, int32_t& errorCode) {
  Lock lock(state_.mutex);
  if (!state_.Record("OpenCloudDrawing", Utf8(drawingRef)) || !state_.SignedIn()) return false;
  const WString ref = drawingRef != nullptr ? drawingRef : u"";
  for (const SpaceDrawing& drawing : state_.drawings) {
    std::error_code error;
    if (RefOf(drawing) == ref && fs::exists(PathOf(drawing.storedPath.c_str()), error)) {
      state_.openedCloudDrawings.push_back(ref);
      return true;
    }
  }
  errorCode = 406;  // not there, or removed from the space
  return false;
}

bool LocalCloudService::QuerySpaceFile(int32_t groupId, WString& drawingRef, const void*,
                                       int32_t folderId, int32_t drawingId) {
  Lock lock(state_.mutex);
  if (!state_.Record("QuerySpaceFile", Args({Num(groupId), Num(folderId), Num(drawingId)})) ||
      !state_.SignedIn()) {
    return false;
  }
  const SpaceDrawing* drawing = FindDrawing(groupId, folderId, drawingId, WString());
  if (drawing == nullptr) return false;
  drawingRef = RefOf(*drawing);
  return true;
}

void LocalCloudService::TakeTime(std::chrono::milliseconds LocalHostState::*delay) {
  std::chrono::milliseconds wait;
  {
    Lock lock(state_.mutex);
    wait = state_.*delay;
  }
  std::this_thread::sleep_for(wait);  // the transfer, without holding the host
}

bool LocalCloudService::UploadSpaceFile(int32_t, const char16_t* localPath,
                                        const char16_t* description, int32_t, SpaceFileRef& stored,
                                        int32_t, int32_t groupId, int32_t folderId) {
  TakeTime(&LocalHostState::uploadDelay);
  Lock lock(state_.mutex);
  if (!state_.Record("UploadSpaceFile",
                     Args({Utf8(localPath), Utf8(description), Num(groupId), Num(folderId)})) ||
      !state_.SignedIn() || localPath == nullptr) {
    return false;
  }
  LocalGroup* group = state_.FindGroup(groupId);
  if (group == nullptr || !OwnRole(*group)) return false;
  const fs::path source = PathOf(localPath);
  const fs::path copy =
      fs::path(state_.spaceFolder) / Num(groupId) / Num(folderId) / source.filename();
  if (!CopyFile(source, copy)) return false;
  SpaceDrawing drawing;
  drawing.drawingId = state_.nextDrawingId++;
  drawing.groupId = groupId;
  drawing.folderId = folderId;
  drawing.name = platform::Utf8ToUtf16(source.filename().string());
  drawing.storedPath = platform::Utf8ToUtf16(copy.string());
  stored.drawingId = drawing.drawingId;
  stored.drawingRef = RefOf(drawing);
  state_.drawings.push_back(std::move(drawing));
  return true;
}

bool LocalCloudService::DownloadPicture(const char16_t* pictureUrl, const char16_t* localPath) {
  TakeTime(&LocalHostState::downloadDelay);
  Lock lock(state_.mutex);
  if (!state_.Record("DownloadPicture", Args({Utf8(pictureUrl), Utf8(localPath)})) ||
      pictureUrl == nullptr || localPath == nullptr) {
    return false;
  }
  // The space's own references fetch the stored drawing.
  for (const SpaceDrawing& drawing : state_.drawings) {
    if (RefOf(drawing) == pictureUrl) {
      return CopyFile(PathOf(drawing.storedPath.c_str()), PathOf(localPath));
    }
  }
  return CopyFile(PathOf(pictureUrl), PathOf(localPath));
}

void LocalCloudService::PrepareAccountForChat(int32_t accountId) {
  Lock lock(state_.mutex);
  if (!state_.Record("PrepareAccountForChat", Num(accountId))) return;
  if (auto it = state_.accounts.find(accountId); it != state_.accounts.end()) {
    it->second.chatReady = true;
  }
}

bool LocalCloudService::SearchAccount(const char16_t* account, int32_t kind, AccountInfo& info) {
  Lock lock(state_.mutex);
  if (!state_.Record("SearchAccount", Args({Utf8(account), Num(kind)})) || !state_.SignedIn() ||
      account == nullptr || *account == u'\0' || (kind != 1 && kind != 2)) {
    return false;
  }
  const WString text = account;
  for (const auto& [id, entry] : state_.accounts) {
    if ((kind == 1 ? entry.mobile : entry.email) == text) {
      info = state_.Describe(entry);
      info.contact = text;
      return true;
    }
  }
  info = AccountInfo{};
  info.relation = 2;
  info.contact = text;
  return true;
}

int32_t LocalCloudService::InviteFriend(const char16_t* account, int32_t kind) {
  Lock lock(state_.mutex);
  if (!state_.Record("InviteFriend", Args({Utf8(account), Num(kind)})) || account == nullptr) {
    return -1;
  }
  state_.invitations.emplace_back(account, kind);
  return 0;
}

bool LocalCloudService::GetAccountInfo(int32_t accountId, AccountInfo& info) {
  Lock lock(state_.mutex);
  if (!state_.Record("GetAccountInfo", Num(accountId)) || !state_.SignedIn()) return false;
  auto it = state_.accounts.find(accountId);
  if (it == state_.accounts.end()) return false;
  info = state_.Describe(it->second);
  return true;
}

void LocalCloudService::RemoveCloudFriend(int32_t accountId) {
  Lock lock(state_.mutex);
  if (!state_.Record("RemoveCloudFriend", Num(accountId)) || !state_.SignedIn()) return;
  const int32_t self = *state_.signedIn;
  state_.friendships.erase({std::min(self, accountId), std::max(self, accountId)});
}

bool LocalCloudService::CreateCloudGroup(const char16_t* groupType, const char16_t* name,
                                         const CloudMemberList& members, CloudGroupInfo& created) {
  Lock lock(state_.mutex);
  if (!state_.Record("CreateCloudGroup", Args({Utf8(groupType), Utf8(name)})) ||
      !state_.SignedIn() || groupType == nullptr || WString(groupType) != u"Public" ||
      name == nullptr) {
    return false;
  }
  LocalGroup group;
  group.cloudGroupId = state_.nextGroupId++;
  group.imGroupId = u"group_" + ImUserIdOf(group.cloudGroupId);
  group.name = name;
  for (const CloudGroupMember& member : members) {
    if (member.accountId >= 0) group.roles[member.accountId] = 0;
  }
  group.roles[*state_.signedIn] = 1;
  created = state_.Info(group);
  state_.groups.emplace(group.cloudGroupId, std::move(group));
  return true;
}

bool LocalCloudService::GetJoinedGroups(CloudGroupList& groups) {
  Lock lock(state_.mutex);
  if (!state_.Record("GetJoinedGroups") || !state_.SignedIn()) return false;
  groups.clear();
  for (const auto& [id, group] : state_.groups) {
    if (OwnRole(group)) groups.push_back(state_.Info(group));
  }
  return true;
}

bool LocalCloudService::GetGroupMembers(const char16_t* imGroupId, GroupDetail& detail) {
  Lock lock(state_.mutex);
  if (!state_.Record("GetGroupMembers", Utf8(imGroupId)) || !state_.SignedIn() ||
      imGroupId == nullptr) {
    return false;
  }
  const LocalGroup* group = state_.FindGroup(WString(imGroupId));
  if (group == nullptr) return false;
  detail = state_.Detail(*group);
  return true;
}

bool LocalCloudService::RenameGroup(int32_t cloudGroupId, const char16_t* newName) {
  Lock lock(state_.mutex);
  if (!state_.Record("RenameGroup", Args({Num(cloudGroupId), Utf8(newName)})) ||
      newName == nullptr || *newName == u'\0') {
    return false;
  }
  LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr || OwnRole(*group) != 1) return false;
  group->name = newName;
  return true;
}

bool LocalCloudService::TransferGroupOwner(int32_t cloudGroupId, int32_t newOwnerId) {
  Lock lock(state_.mutex);
  if (!state_.Record("TransferGroupOwner", Args({Num(cloudGroupId), Num(newOwnerId)}))) {
    return false;
  }
  LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr || OwnRole(*group) != 1 || newOwnerId == *state_.signedIn ||
      group->roles.count(newOwnerId) == 0) {
    return false;
  }
  group->roles[*state_.signedIn] = 0;
  group->roles[newOwnerId] = 1;
  return true;
}

bool LocalCloudService::AddGroupMembers(int32_t cloudGroupId, const CloudMemberList& members,
                                        int32_t& addedCount) {
  Lock lock(state_.mutex);
  if (!state_.Record("AddGroupMembers", Args({Num(cloudGroupId), Num(members.size())}))) {
    return false;
  }
  LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr || !OwnRole(*group)) return false;
  addedCount = 0;
  for (const CloudGroupMember& member : members) {
    if (member.accountId >= 0 && group->roles.emplace(member.accountId, 0).second) ++addedCount;
  }
  return true;
}

bool LocalCloudService::RemoveGroupMembers(int32_t cloudGroupId, const CloudMemberList& members,
                                           int32_t mode) {
  Lock lock(state_.mutex);
  if (!state_.Record("RemoveGroupMembers",
                     Args({Num(cloudGroupId), Num(members.size()), Num(mode)}))) {
    return false;
  }
  LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr) return false;
  const std::optional<int32_t> role = OwnRole(*group);
  if (!role) return false;
  const int32_t self = *state_.signedIn;
  if (mode == 2) {
    // Leaving: the user alone, and an owner hands the group on first.
    if (members.size() != 1 || members[0].accountId != self || *role == 1) return false;
    group->roles.erase(self);
    return true;
  }
  if (mode != 1 || *role != 1) return false;
  for (const CloudGroupMember& member : members) {
    if (member.accountId == self) return false;
  }
  for (const CloudGroupMember& member : members) group->roles.erase(member.accountId);
  return true;
}

bool LocalCloudService::GetGroupRole(int32_t cloudGroupId, int32_t& role) {
  Lock lock(state_.mutex);
  if (!state_.Record("GetGroupRole", Num(cloudGroupId))) return false;
  const LocalGroup* group = state_.FindGroup(cloudGroupId);
  const std::optional<int32_t> own = group != nullptr ? OwnRole(*group) : std::nullopt;
  if (!own) return false;
  role = *own;
  return true;
}

bool LocalCloudService::DisbandCloudGroup(int32_t cloudGroupId, int32_t reserved) {
  Lock lock(state_.mutex);
  if (!state_.Record("DisbandCloudGroup", Args({Num(cloudGroupId), Num(reserved)}))) return false;
  const LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr || OwnRole(*group) != 1) return false;
  state_.groups.erase(cloudGroupId);
  return true;
}

bool LocalCloudService::GetGroupInfo(const char16_t* imGroupId, CloudGroupInfo& info) {
  Lock lock(state_.mutex);
  if (!state_.Record("GetGroupInfo", Utf8(imGroupId)) || imGroupId == nullptr) return false;
  const LocalGroup* group = state_.FindGroup(WString(imGroupId));
  if (group == nullptr) return false;
  info = state_.Info(*group);
  return true;
}

void LocalCloudService::CheckGroupOwnerTransfer(int32_t cloudGroupId, int32_t newOwnerId,
                                                int32_t& allowed, WString& reason) {
  Lock lock(state_.mutex);
  allowed = 0;
  if (!state_.Record("CheckGroupOwnerTransfer", Args({Num(cloudGroupId), Num(newOwnerId)}))) {
    reason = u"check failed";
    return;
  }
  const LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr || OwnRole(*group) != 1) {
    reason = u"not the owner";
  } else if (newOwnerId == *state_.signedIn || group->roles.count(newOwnerId) == 0) {
    reason = u"not another member";
  } else {
    allowed = 1;
  }
}

bool LocalCloudService::CheckSharedSession(int32_t groupId, int32_t drawingId, int32_t accountId,
                                           int32_t mode, SharedSessionInfo* session) {
  Lock lock(state_.mutex);
  if (!state_.Record("CheckSharedSession",
                     Args({Num(groupId), Num(drawingId), Num(accountId), Num(mode)})) ||
      !state_.SignedIn()) {
    return false;
  }
  SharedSessionInfo found;
  if (auto it = state_.othersSessions.find(groupId); it != state_.othersSessions.end()) {
    found = it->second;
  } else {
    found.groupId = groupId;
    found.drawingId = drawingId;
  }
  if (session != nullptr) *session = found;
  return found.maxParticipants == 0 || found.participants < found.maxParticipants;
}

bool LocalCloudService::JoinSharedSession(int32_t groupId, int32_t drawingId,
                                          const char16_t* sessionText, SharedSessionInfo& session) {
  Lock lock(state_.mutex);
  if (!state_.Record("JoinSharedSession",
                     Args({Num(groupId), Num(drawingId), Utf8(sessionText)})) ||
      !state_.SignedIn() || sessionText == nullptr) {
    return false;
  }
  SharedSessionInfo& shared = state_.othersSessions[groupId];
  if (shared.maxParticipants > 0 && shared.participants >= shared.maxParticipants) return false;
  shared.groupId = groupId;
  shared.drawingId = drawingId;
  shared.sessionText = sessionText;
  if (const LocalGroup* group = state_.FindGroup(groupId)) shared.sessionKey = group->imGroupId;
  for (const SpaceDrawing& drawing : state_.drawings) {
    if (drawing.groupId == groupId && drawing.drawingId == drawingId)
      shared.drawingRef = RefOf(drawing);
  }
  ++shared.participants;
  state_.sessionMembers[groupId].push_back(*state_.signedIn);
  session = shared;
  return true;
}

void LocalCloudService::LeaveSharedSession(int32_t groupId, int32_t drawingId,
                                           const char16_t* sessionText) {
  Lock lock(state_.mutex);
  if (!state_.Record("LeaveSharedSession",
                     Args({Num(groupId), Num(drawingId), Utf8(sessionText)}))) {
    return;
  }
  auto it = state_.othersSessions.find(groupId);
  if (it != state_.othersSessions.end() && it->second.participants > 0) --it->second.participants;
  if (state_.signedIn) std::erase(state_.sessionMembers[groupId], *state_.signedIn);
}

bool LocalCloudService::QuerySharedSessionState(int32_t accountOrGroupId,
                                                SharedSessionInfo& session, int32_t& inSession) {
  Lock lock(state_.mutex);
  inSession = 0;
  if (!state_.Record("QuerySharedSessionState", Num(accountOrGroupId)) || !state_.SignedIn()) {
    return false;
  }
  if (accountOrGroupId == *state_.signedIn) {
    if (state_.inSession) {
      session = state_.session;
      inSession = 1;
    }
    return true;
  }
  auto it = state_.othersSessions.find(accountOrGroupId);
  if (it != state_.othersSessions.end() && it->second.participants > 0) {
    session = it->second;
    inSession = 1;
  }
  return true;
}

bool LocalCloudService::FillShareTree(int32_t cloudGroupId, ShareTreeSelection& tree) {
  Lock lock(state_.mutex);
  if (!state_.Record("FillShareTree", Num(cloudGroupId)) || !state_.SignedIn()) return false;
  LocalGroup* group = state_.FindGroup(cloudGroupId);
  if (group == nullptr || !OwnRole(*group)) return false;
  tree = ShareTreeSelection{};
  tree.cloudGroupId = cloudGroupId;
  for (const SpaceDrawing& drawing : state_.drawings) {
    if (drawing.groupId != cloudGroupId) continue;
    std::error_code error;
    const auto size = fs::file_size(PathOf(drawing.storedPath.c_str()), error);
    if (error) continue;  // removed from the folder: no longer in the space
    tree.drawings.push_back({drawing.drawingId, drawing.folderId, drawing.name, RefOf(drawing),
                             static_cast<int64_t>(size)});
  }
  return true;
}

}  // namespace host::local

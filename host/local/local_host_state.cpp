#include "host/local/local_host_state.h"

#include <algorithm>
#include <charconv>

namespace host::local {

WString ImUserIdOf(int32_t accountId) {
  const std::string digits = std::to_string(accountId);
  return WString(digits.begin(), digits.end());
}

int32_t AccountIdOf(const WString& imUserId) {
  const std::string narrow = platform::Utf16ToUtf8(imUserId);
  int32_t id = -1;
  const auto [end, error] = std::from_chars(narrow.data(), narrow.data() + narrow.size(), id);
  if (error != std::errc() || end != narrow.data() + narrow.size() || id < 0) return -1;
  return id;
}

std::string Utf8(const char16_t* text) {
  return text == nullptr ? std::string("(null)") : platform::Utf16ToUtf8(text);
}

LocalGroup* LocalHostState::FindGroup(int32_t cloudGroupId) {
  auto it = groups.find(cloudGroupId);
  return it == groups.end() ? nullptr : &it->second;
}

LocalGroup* LocalHostState::FindGroup(const WString& imGroupId) {
  for (auto& [id, group] : groups) {
    if (group.imGroupId == imGroupId) return &group;
  }
  return nullptr;
}

const LocalGroup* LocalHostState::FindGroup(const WString& imGroupId) const {
  return const_cast<LocalHostState*>(this)->FindGroup(imGroupId);
}

bool LocalHostState::AreFriends(int32_t a, int32_t b) const {
  return friendships.count({std::min(a, b), std::max(a, b)}) > 0;
}

AccountInfo LocalHostState::Describe(const LocalAccount& account) const {
  AccountInfo info;
  info.relation = signedIn && AreFriends(*signedIn, account.id) ? 3 : 1;
  info.flag = account.chatReady ? 1 : 0;
  info.accountId = account.id;
  info.contact = account.email.empty() ? account.mobile : account.email;
  info.displayName = account.displayName;
  info.avatarUrl = account.avatarPath;
  info.imUserId = ImUserIdOf(account.id);
  return info;
}

CloudGroupMember LocalHostState::Member(int32_t accountId, int32_t role) const {
  CloudGroupMember member;
  member.accountId = accountId;
  member.imUserId = ImUserIdOf(accountId);
  member.role = role;
  if (auto it = accounts.find(accountId); it != accounts.end()) {
    member.displayName = it->second.displayName;
    member.avatarUrl = it->second.avatarPath;
  } else {
    member.displayName = member.imUserId;
  }
  return member;
}

GroupDetail LocalHostState::Detail(const LocalGroup& group) const {
  GroupDetail detail;
  detail.cloudGroupId = group.cloudGroupId;
  detail.imGroupId = group.imGroupId;
  detail.name = group.name;
  for (const auto& [accountId, role] : group.roles) {
    if (role == 1) detail.ownerImUserId = ImUserIdOf(accountId);
    detail.members.push_back(Member(accountId, role));
  }
  detail.memberCount = static_cast<int32_t>(group.roles.size());
  return detail;
}

CloudGroupInfo LocalHostState::Info(const LocalGroup& group) const {
  CloudGroupInfo info;
  info.cloudGroupId = group.cloudGroupId;
  info.imGroupId = group.imGroupId;
  info.name = group.name;
  info.memberCount = static_cast<int32_t>(group.roles.size());
  return info;
}

WString RefOf(const SpaceDrawing& drawing) {
  return platform::Utf8ToUtf16(std::to_string(drawing.groupId) + "/" +
                               std::to_string(drawing.drawingId));
}

}  // namespace host::local

#include "service/parts/group_directory.h"

namespace service {

void GroupDirectory::Clear() {
  std::lock_guard lock(mutex_);
  groups_.clear();
  sdk_groups_.clear();
  host_groups_.clear();
  joined_groups_known_ = false;
}

void GroupDirectory::ReplaceHostGroups(std::vector<CloudGroupInfo> groups) {
  std::lock_guard lock(mutex_);
  host_groups_ = std::move(groups);
  joined_groups_known_ = true;
  RebuildLocked();
}

void GroupDirectory::ReplaceSdkGroups(std::vector<GroupInfo> groups) {
  std::lock_guard lock(mutex_);
  sdk_groups_ = std::move(groups);
  joined_groups_known_ = true;
  RebuildLocked();
}

void GroupDirectory::RebuildLocked() {
  // The SDK knows names and owners as they are now; the host adds its cloud
  // ids and fills what the SDK did not report.
  groups_.clear();
  for (const GroupInfo& group : sdk_groups_) groups_[group.group_id] = group;
  for (const CloudGroupInfo& cloud : host_groups_) {
    if (cloud.imGroupId.empty()) continue;
    GroupInfo& group = groups_[cloud.imGroupId];
    group.group_id = cloud.imGroupId;
    group.cloud_group_id = cloud.cloudGroupId;
    if (group.name.empty()) group.name = cloud.name;
    if (group.face_url.empty()) group.face_url = cloud.avatarUrl;
  }
}

std::vector<GroupInfo> GroupDirectory::All() const {
  std::lock_guard lock(mutex_);
  std::vector<GroupInfo> groups;
  for (const auto& [id, group] : groups_) groups.push_back(group);
  return groups;
}

std::optional<GroupInfo> GroupDirectory::Find(const WString& groupId) const {
  std::lock_guard lock(mutex_);
  auto it = groups_.find(groupId);
  if (it == groups_.end()) return std::nullopt;
  return it->second;
}

std::vector<CloudGroupInfo> GroupDirectory::HostGroups() const {
  std::lock_guard lock(mutex_);
  return host_groups_;
}

std::vector<GroupInfo> GroupDirectory::SdkGroups() const {
  std::lock_guard lock(mutex_);
  return sdk_groups_;
}

bool GroupDirectory::IsJoined(const WString& groupId) const {
  std::lock_guard lock(mutex_);
  return groups_.count(groupId) != 0;
}

bool GroupDirectory::MayBeJoined(const WString& groupId) const {
  std::lock_guard lock(mutex_);
  return !joined_groups_known_ || groups_.count(groupId) != 0;
}

}  // namespace service

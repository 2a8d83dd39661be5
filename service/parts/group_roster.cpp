#include "service/parts/group_roster.h"

#include <algorithm>

namespace service {

GroupMemberInfo_Stru MemberRecordOf(const CloudGroupMember& member) {
  GroupMemberInfo_Stru record;
  record.identifier = member.imUserId;
  record.member_role = member.role == kHostRoleOwner ? kMemberRoleOwner : kMemberRoleOrdinary;
  record.name_card = member.displayName;
  return record;
}

void GroupRoster::Store(const WString& groupId, const GroupDetail& detail, const WString& userId) {
  Entry entry;
  GroupSummary& summary = entry.summary;
  summary.groupId = groupId;
  summary.cloudGroupId = detail.cloudGroupId;
  summary.name = detail.name;
  summary.notice = detail.introduction;
  summary.ownerId = detail.ownerImUserId;
  // The host's count may lag behind a change it reports in the list.
  summary.memberCount =
      std::max<int32_t>(detail.memberCount, static_cast<int32_t>(detail.members.size()));
  for (const CloudGroupMember& member : detail.members) {
    entry.members.push_back(MemberRecordOf(member));
    if (member.role == kHostRoleOwner && summary.ownerId.empty()) summary.ownerId = member.imUserId;
    if (member.imUserId == userId && member.role == kHostRoleOwner) summary.userIsOwner = true;
  }
  if (!userId.empty() && summary.ownerId == userId) summary.userIsOwner = true;
  entry.cloudMembers = detail.members;
  std::lock_guard lock(mutex_);
  groups_[groupId] = std::move(entry);
}

void GroupRoster::Forget(const WString& groupId) {
  std::lock_guard lock(mutex_);
  groups_.erase(groupId);
}

void GroupRoster::Clear() {
  std::lock_guard lock(mutex_);
  groups_.clear();
}

std::optional<GroupSummary> GroupRoster::Summary(const WString& groupId) const {
  std::lock_guard lock(mutex_);
  auto it = groups_.find(groupId);
  if (it == groups_.end()) return std::nullopt;
  return it->second.summary;
}

std::vector<GroupMemberInfo_Stru> GroupRoster::Members(const WString& groupId) const {
  std::lock_guard lock(mutex_);
  auto it = groups_.find(groupId);
  return it == groups_.end() ? std::vector<GroupMemberInfo_Stru>{} : it->second.members;
}

CloudMemberList GroupRoster::CloudMembers(const WString& groupId) const {
  std::lock_guard lock(mutex_);
  auto it = groups_.find(groupId);
  return it == groups_.end() ? CloudMemberList{} : it->second.cloudMembers;
}

}  // namespace service

#pragma once
// What the service knows of each group the user opened a group window for:
// the group as the host last described it (cloud id, name, notice, members
// with their roles) and the members as chat records (GroupMemberInfo_Stru).
// Filled by every look-up at the host, forgotten when the user leaves or
// the group is disbanded, emptied with the session. One lock, held only
// inside these calls; readers get copies.

#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "host/host_records.h"
#include "platform/strings.h"
#include "records/group_records.h"

namespace service {

// Chat-side member roles (the SDK's): the owner is 3, anyone else 1.
inline constexpr uint32_t kMemberRoleOrdinary = 1;
inline constexpr uint32_t kMemberRoleOwner = 3;
// The host's role of the owner.
inline constexpr int32_t kHostRoleOwner = 1;

// A group's details as the group windows show them.
struct GroupSummary {
  WString groupId;  // the chat id
  int32_t cloudGroupId = -1;
  WString name;
  WString notice;  // the host's introduction text
  WString ownerId;
  int32_t memberCount = 0;
  bool userIsOwner = false;
};

class GroupRoster {
 public:
  // Replaces what is known of the group with the host's `detail`; `userId`
  // is the signed-in user (for the own role).
  void Store(const WString& groupId, const GroupDetail& detail, const WString& userId);
  void Forget(const WString& groupId);
  void Clear();

  std::optional<GroupSummary> Summary(const WString& groupId) const;
  // In the host's order; empty for a group never looked up.
  std::vector<GroupMemberInfo_Stru> Members(const WString& groupId) const;
  CloudMemberList CloudMembers(const WString& groupId) const;

 private:
  struct Entry {
    GroupSummary summary;
    std::vector<GroupMemberInfo_Stru> members;
    CloudMemberList cloudMembers;
  };
  mutable std::mutex mutex_;
  std::map<WString, Entry> groups_;
};

// The chat record of a member the host listed.
GroupMemberInfo_Stru MemberRecordOf(const CloudGroupMember& member);

}  // namespace service

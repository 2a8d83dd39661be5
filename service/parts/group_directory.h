#pragma once
// The joined groups: the SDK's list (names, faces, owners as they are now)
// and the host's cloud groups (cloud ids), joined into one group map. One
// lock, held only inside these calls; readers get copies.

#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "host/host_records.h"
#include "platform/strings.h"
#include "service/service_records.h"

namespace service {

class GroupDirectory {
 public:
  void Clear();
  void ReplaceHostGroups(std::vector<CloudGroupInfo> groups);
  void ReplaceSdkGroups(std::vector<GroupInfo> groups);

  std::vector<GroupInfo> All() const;
  std::optional<GroupInfo> Find(const WString& groupId) const;
  std::vector<CloudGroupInfo> HostGroups() const;
  std::vector<GroupInfo> SdkGroups() const;
  bool IsJoined(const WString& groupId) const;
  // False only once a joined-group list has arrived without the group:
  // before that nothing is known to be left, and a user's history is not
  // deleted on a guess.
  bool MayBeJoined(const WString& groupId) const;

 private:
  void RebuildLocked();

  mutable std::mutex mutex_;
  std::map<WString, GroupInfo> groups_;
  std::vector<GroupInfo> sdk_groups_;
  std::vector<CloudGroupInfo> host_groups_;
  bool joined_groups_known_ = false;
};

}  // namespace service

#pragma once
// The friend directory: the friends, the pending friend requests with the
// sequence their paging continues from, and the profiles of other users.
// One lock, held only inside these calls; readers get copies.

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/strings.h"
#include "records/profile_records.h"
#include "service/service_records.h"

namespace service {

class FriendDirectory {
 public:
  void Clear();

  void ReplaceFriends(std::vector<FriendsList_Stru> friends);
  std::vector<FriendsList_Stru> Friends() const;
  // Shows every friend, in order, to `visit` under the lock: for readers that
  // need a little of each of a thousand records. `visit` must not call back.
  void VisitFriends(const std::function<void(const FriendsList_Stru&)>& visit) const;
  std::optional<FriendsList_Stru> FindFriend(const WString& id) const;
  void RemoveFriends(const std::vector<WString>& ids);

  // A page replaces the requests; those the user accepted stay, marked.
  // Returns the requesters whose profiles are not known yet.
  std::vector<WString> ReplaceRequests(PendencyPage page);
  // Marks the request of `id` accepted.
  void MarkAccepted(const WString& id);
  std::vector<PendingFriendRequest> Requests() const;
  uint64_t PendencySequence() const;
  // The next page starts from the newest requests again.
  void RestartPaging();

  void StoreProfiles(std::vector<UserProfile> profiles);
  std::optional<UserProfile> FindProfile(const WString& id) const;

 private:
  void IndexFriendsLocked();

  mutable std::mutex mutex_;
  std::vector<FriendsList_Stru> friends_;
  // Id -> position in `friends_`: a list of a thousand friends looks each
  // one up (its picture, its name) without walking the list each time.
  std::unordered_map<WString, size_t> friend_index_;
  std::map<WString, UserProfile> profiles_;
  std::vector<PendingFriendRequest> requests_;
  uint64_t pendency_seq_ = 0;
};

}  // namespace service

#include "service/parts/friend_directory.h"

#include <algorithm>

namespace service {

void FriendDirectory::Clear() {
  std::lock_guard lock(mutex_);
  friends_.clear();
  friend_index_.clear();
  profiles_.clear();
  requests_.clear();
  pendency_seq_ = 0;
}

void FriendDirectory::ReplaceFriends(std::vector<FriendsList_Stru> friends) {
  std::lock_guard lock(mutex_);
  friends_ = std::move(friends);
  IndexFriendsLocked();
}

void FriendDirectory::IndexFriendsLocked() {
  friend_index_.clear();
  for (size_t i = 0; i < friends_.size(); ++i) {
    friend_index_.try_emplace(friends_[i].identifier, i);  // the first of a repeated id
  }
}

std::vector<FriendsList_Stru> FriendDirectory::Friends() const {
  std::lock_guard lock(mutex_);
  return friends_;
}

void FriendDirectory::VisitFriends(
    const std::function<void(const FriendsList_Stru&)>& visit) const {
  std::lock_guard lock(mutex_);
  for (const FriendsList_Stru& f : friends_) visit(f);
}

std::optional<FriendsList_Stru> FriendDirectory::FindFriend(const WString& id) const {
  std::lock_guard lock(mutex_);
  auto found = friend_index_.find(id);
  if (found == friend_index_.end()) return std::nullopt;
  return friends_[found->second];
}

void FriendDirectory::RemoveFriends(const std::vector<WString>& ids) {
  std::lock_guard lock(mutex_);
  std::erase_if(friends_, [&](const FriendsList_Stru& f) {
    return std::find(ids.begin(), ids.end(), f.identifier) != ids.end();
  });
  IndexFriendsLocked();
}

std::vector<WString> FriendDirectory::ReplaceRequests(PendencyPage page) {
  std::vector<PendingFriendRequest> requests;
  for (FriendAddPendency& pendency : page.pendencies) {
    PendingFriendRequest request;
    request.pendency = std::move(pendency);
    requests.push_back(std::move(request));
  }
  std::lock_guard lock(mutex_);
  // Requests the user accepted stay, so that the list can show them as added.
  for (const PendingFriendRequest& old : requests_) {
    if (!old.handled) continue;
    auto same = std::find_if(requests.begin(), requests.end(), [&](const auto& r) {
      return r.pendency.identifier == old.pendency.identifier;
    });
    if (same != requests.end()) {
      same->handled = true;
    } else {
      requests.push_back(old);
    }
  }
  requests_ = std::move(requests);
  pendency_seq_ = page.current_seq;
  std::vector<WString> unknown;
  for (const PendingFriendRequest& request : requests_) {
    const WString& id = request.pendency.identifier;
    if (!id.empty() && profiles_.count(id) == 0) unknown.push_back(id);
  }
  return unknown;
}

void FriendDirectory::MarkAccepted(const WString& id) {
  std::lock_guard lock(mutex_);
  for (PendingFriendRequest& request : requests_) {
    if (request.pendency.identifier == id) request.handled = true;
  }
}

std::vector<PendingFriendRequest> FriendDirectory::Requests() const {
  std::lock_guard lock(mutex_);
  return requests_;
}

uint64_t FriendDirectory::PendencySequence() const {
  std::lock_guard lock(mutex_);
  return pendency_seq_;
}

void FriendDirectory::RestartPaging() {
  std::lock_guard lock(mutex_);
  pendency_seq_ = 0;
}

void FriendDirectory::StoreProfiles(std::vector<UserProfile> profiles) {
  std::lock_guard lock(mutex_);
  for (UserProfile& profile : profiles) {
    if (profile.identifier.empty()) continue;
    WString id = profile.identifier;
    profiles_[id] = std::move(profile);
  }
}

std::optional<UserProfile> FriendDirectory::FindProfile(const WString& id) const {
  std::lock_guard lock(mutex_);
  auto it = profiles_.find(id);
  if (it == profiles_.end()) return std::nullopt;
  return it->second;
}

}  // namespace service

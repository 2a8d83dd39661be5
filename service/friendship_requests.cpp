// The friendship entry points of the window and the dialogs, and the caches
// they read: pending requests, profiles, names.
#include <json/json.h>

#include <algorithm>

#include "platform/trace.h"
#include "records/json_reader.h"
#include "records/profile_parser.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "store/chat_db.h"

void CChatTools::AgreeToAddFriends(PendingFriendRequest* record) {
  platform::Trace("AgreeToAddFriends enter!!!!!!");
  if (record != nullptr &&
      HandleFriendAddRequest(record->pendency.identifier, WString(), WString()) == 0) {
    record->handled = true;
    {
      std::lock_guard lock(cache_mutex_);
      for (PendingFriendRequest& cached : pending_requests_) {
        if (cached.pendency.identifier == record->pendency.identifier) cached.handled = true;
      }
    }
    service::Post(ChatWindow(), platform::msg::kFriendRequestAccepted);
  }
  platform::Trace("AgreeToAddFriends exit!!!!!!");
}

void CChatTools::FriendList_DeleteFriend(const WString& id) {
  platform::Trace("FriendList_DeleteFriend enter!!!!!!");
  if (DeleteFriend(id) == 0) {
    // The user was told that the chat history goes with the friend.
    DeleteConv(id);
    CChatDb::Instance().RunSql(UserId(), id);
    service::Post(ChatWindow(), platform::msg::kFriendListChanged);
  }
  platform::Trace("FriendList_DeleteFriend exit!!!!!!");
}

void CChatTools::OnFriendAddRequest(const SdkEventRecord& record) {
  platform::Trace("OnFriendAddRequest in");
  Json::Value root;
  if (!records::ParseJsonText(record.text, root) || !root.isArray()) {
    platform::Trace("解析json数据错误！error:%s", "friend add request is not a JSON array");
    platform::Trace("OnFriendAddRequest out");
    return;
  }
  std::vector<WString> requesters;
  for (const Json::Value& entry : root) {
    FriendAddPendency pendency;
    records::ParseFriendAddPendency(entry, pendency);
    if (!pendency.identifier.empty()) requesters.push_back(pendency.identifier);
  }
  if (!requesters.empty()) RequestUserProfiles(requesters);
  service::Post(ChatWindow(), platform::msg::kFriendRequestsChanged);
  platform::Trace("OnFriendAddRequest out");
}

void CChatTools::OnFriendsDeleted(std::unique_ptr<std::string> json) {
  if (json == nullptr) return;
  std::vector<WString> ids;
  Json::Value root;
  if (!records::ParseJsonText(*json, root) || !root.isArray() ||
      !records::GuardRecord("FriendIdArray", [&] {
        for (const Json::Value& entry : root) {
          WString id;
          records::ConvertTo(entry, id);
          ids.push_back(std::move(id));
        }
      })) {
    platform::Trace("解析json数据错误！error:%s", "deleted friends are not a JSON array of ids");
    return;
  }
  {
    std::lock_guard lock(cache_mutex_);
    std::erase_if(friends_, [&](const FriendsList_Stru& f) {
      return std::find(ids.begin(), ids.end(), f.identifier) != ids.end();
    });
  }
  service::Post(ChatWindow(), platform::msg::kFriendListChanged);
}

std::vector<PendingFriendRequest> CChatTools::PendingRequests() const {
  std::lock_guard lock(cache_mutex_);
  return pending_requests_;
}

uint64_t CChatTools::PendencySequence() const {
  std::lock_guard lock(cache_mutex_);
  return pendency_seq_;
}

std::optional<UserProfile> CChatTools::FindProfile(const WString& id) const {
  std::lock_guard lock(cache_mutex_);
  auto it = profiles_.find(id);
  if (it == profiles_.end()) return std::nullopt;
  return it->second;
}

WString CChatTools::PersonName(const WString& id) const {
  if (std::optional<FriendsList_Stru> found = FindFriend(id)) {
    WString name = FriendDisplayName(*found);
    if (!name.empty()) return name;
  }
  if (std::optional<UserProfile> profile = FindProfile(id)) {
    if (!profile->nick_name.empty()) return profile->nick_name;
  }
  return id;
}

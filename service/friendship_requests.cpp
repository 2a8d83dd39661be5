// The friendship entry points of the window and the dialogs, and the caches
// they read: pending requests, profiles, names.
#include <json/json.h>

#include <algorithm>

#include "platform/trace.h"
#include "records/json_reader.h"
#include "records/profile_parser.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "service/sdk_text.h"
#include "store/chat_db.h"

void CChatTools::AgreeToAddFriends(PendingFriendRequest* record) {
  platform::Trace("AgreeToAddFriends enter!!!!!!");
  if (record != nullptr &&
      HandleFriendAddRequest(record->pendency.identifier, WString(), WString()) == 0) {
    record->handled = true;
    friends_.MarkAccepted(record->pendency.identifier);
    service::Post<platform::msg::kFriendRequestAccepted>(ChatWindow());
  }
  platform::Trace("AgreeToAddFriends exit!!!!!!");
}

void CChatTools::FriendList_DeleteFriend(const WString& id) {
  platform::Trace("FriendList_DeleteFriend enter!!!!!!");
  if (DeleteFriend(id) == 0) {
    // The user was told that the chat history goes with the friend.
    DeleteConv(id);
    store_.RunSql(UserId(), id);
    service::Post<platform::msg::kFriendListChanged>(ChatWindow());
  }
  platform::Trace("FriendList_DeleteFriend exit!!!!!!");
}

void CChatTools::OnFriendAddRequest(const SdkEventRecord& record) {
  OnFriendAddRequest(record, CurrentSession());
}

void CChatTools::OnFriendAddRequest(const SdkEventRecord& record, service::SessionStamp session) {
  service::TracedScope trace("OnFriendAddRequest in", "OnFriendAddRequest out");
  Json::Value root;
  if (!records::ParseJsonText(record.text, root) || !root.isArray()) {
    platform::Trace("解析json数据错误！error:%s", "friend add request is not a JSON array");
    return;
  }
  std::vector<WString> requesters;
  for (const Json::Value& entry : root) {
    FriendAddPendency pendency;
    records::ParseFriendAddPendency(entry, pendency);
    if (!pendency.identifier.empty()) requesters.push_back(pendency.identifier);
  }
  // The refresh this asks for must show the new request: it starts from the
  // newest again, not past the page the list showed last.
  if (!session_.WhileCurrent(session, [&] { friends_.RestartPaging(); })) return;
  if (!requesters.empty()) RequestUserProfiles(requesters);
  service::Post<platform::msg::kFriendRequestsChanged>(ChatWindow());
}

void CChatTools::OnFriendsDeleted(const std::string& json, service::SessionStamp session) {
  std::vector<WString> ids;
  Json::Value root;
  if (!records::ParseJsonText(json, root) || !root.isArray() ||
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
  if (session_.WhileCurrent(session, [&] { friends_.RemoveFriends(ids); })) {
    service::Post<platform::msg::kFriendListChanged>(ChatWindow());
  }
}

std::vector<PendingFriendRequest> CChatTools::PendingRequests() const {
  return friends_.Requests();
}

uint64_t CChatTools::PendencySequence() const {
  return friends_.PendencySequence();
}

std::optional<UserProfile> CChatTools::FindProfile(const WString& id) const {
  return friends_.FindProfile(id);
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

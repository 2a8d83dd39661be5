#pragma once
// The friends page's three sources held in memory, recording what the page
// asks of the service.

#include <algorithm>
#include <string>
#include <vector>

#include "platform/strings.h"
#include "service/panes/friend_list_source.h"
#include "service/panes/group_list_source.h"
#include "service/panes/request_list_source.h"

namespace ui::test {

struct FakeFriendSources : service::FriendListSource,
                           service::GroupListSource,
                           service::RequestListSource {
  std::vector<FriendsList_Stru> friends;
  std::vector<GroupInfo> groups;
  std::vector<PendingFriendRequest> requests;
  bool requestsUnread = false;
  int remarkResult = 0;
  bool acceptTaken = true;
  std::vector<std::string> calls;  // what the page asked, in order

  void AddFriend(const WString& id, const WString& nickname, const WString& remark = {}) {
    FriendsList_Stru f;
    f.identifier = id;
    f.remark = remark;
    f.profile.nick_name = nickname;
    friends.push_back(f);
  }
  void AddRequest(const WString& id, bool handled) {
    PendingFriendRequest r;
    r.pendency.identifier = id;
    r.handled = handled;
    requests.push_back(r);
  }
  void Record(const std::string& what, const WString& id, const WString& more = {}) {
    std::string call = what + " " + platform::Utf16ToUtf8(id);
    if (!more.empty()) call += " " + platform::Utf16ToUtf8(more);
    calls.push_back(call);
  }

  // Friends.
  std::vector<service::FriendListEntry> FriendEntries() const override {
    std::vector<service::FriendListEntry> entries;
    for (const FriendsList_Stru& f : friends) entries.push_back(service::ListEntryOf(f));
    return entries;
  }
  std::optional<FriendsList_Stru> FindFriend(const WString& id) const override {
    for (const FriendsList_Stru& f : friends) {
      if (f.identifier == id) return f;
    }
    return std::nullopt;
  }
  WString FaceImage(const WString&) override { return u"..\\img\\PersonDefaultImg.png"; }
  bool HasUnreadRequests() const override { return requestsUnread; }
  void SetRequestsUnread(bool unread) override { requestsUnread = unread; }
  int ModifyRemark(const WString& id, const WString& remark) override {
    Record("Remark", id, remark);
    return remarkResult;
  }
  void DeleteFriend(const WString& id) override {
    Record("Delete", id);
    std::erase_if(friends, [&](const FriendsList_Stru& f) { return f.identifier == id; });
  }
  void RefreshFriends() override { calls.push_back("RefreshFriends"); }

  // Groups.
  std::vector<GroupInfo> Groups() const override { return groups; }
  bool IsOwnedByUser(const GroupInfo& group) const override { return group.owner == u"me"; }

  // Requests.
  std::vector<PendingFriendRequest> Requests() const override { return requests; }
  WString RequesterName(const WString& id) const override { return u"name of " + id; }
  bool Accept(const WString& id) override {
    Record("Accept", id);
    for (PendingFriendRequest& r : requests) {
      if (r.pendency.identifier == id) r.handled = acceptTaken;
    }
    return acceptTaken;
  }
  void ReportRead(uint64_t seconds) override {
    Record("ReportRead", platform::Utf8ToUtf16(std::to_string(seconds)));
  }
  void Refresh() override { calls.push_back("RefreshRequests"); }
};

}  // namespace ui::test

#pragma once
// What the friend list and the friend card need of the service: the friends,
// their pictures, the unread mark of the request entry, the remark and the
// deletion. Tests drive the pane with a fake of this; the module uses
// MakeFriendListSource.

#include <memory>
#include <optional>
#include <vector>

#include "platform/strings.h"
#include "records/profile_records.h"

class CChatTools;

namespace service {

// A friend as the list knows it before its row is drawn.
struct FriendListEntry {
  WString id;
  WString displayName;  // the remark, else the nickname
};
FriendListEntry ListEntryOf(const FriendsList_Stru& friendRecord);

class FriendListSource {
 public:
  virtual ~FriendListSource() = default;
  // In the service's order; the records stay where they are.
  virtual std::vector<FriendListEntry> FriendEntries() const = 0;
  virtual std::optional<FriendsList_Stru> FindFriend(const WString& id) const = 0;
  // A cached face file, or the default picture while there is none (3192
  // with the id follows when the picture has arrived).
  virtual WString FaceImage(const WString& id) = 0;
  // Pending friend requests wait (the "新的朋友" entry's dot).
  virtual bool HasUnreadRequests() const = 0;
  virtual void SetRequestsUnread(bool unread) = 0;
  // The SDK call's result (0: accepted); the list is refreshed after.
  virtual int ModifyRemark(const WString& id, const WString& remark) = 0;
  // The friend goes, with the conversation and its history.
  virtual void DeleteFriend(const WString& id) = 0;
  // Asks for the friends and their profiles again (3183 follows).
  virtual void RefreshFriends() = 0;
};

std::unique_ptr<FriendListSource> MakeFriendListSource(CChatTools& tools);

}  // namespace service

// The friend list's source over CChatTools.
#include "service/panes/friend_list_source.h"

#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/panes/face_fetcher.h"

namespace service {
namespace {

class ChatToolsFriendList final : public FriendListSource {
 public:
  explicit ChatToolsFriendList(CChatTools& tools) : tools_(tools), faces_(tools) {}

  std::vector<FriendListEntry> FriendEntries() const override {
    std::vector<FriendListEntry> entries;
    tools_.VisitFriends([&](const FriendsList_Stru& f) { entries.push_back(ListEntryOf(f)); });
    return entries;
  }
  std::optional<FriendsList_Stru> FindFriend(const WString& id) const override {
    return tools_.FindFriend(id);
  }
  WString FaceImage(const WString& id) override {
    std::optional<FriendsList_Stru> found = tools_.FindFriend(id);
    return faces_.CachedOrQueued(found ? found->profile.face_url : WString(), kPersonDefaultImage,
                                 id);
  }
  bool HasUnreadRequests() const override { return tools_.IsUnread(kFriendRequestsUnreadId); }
  void SetRequestsUnread(bool unread) override {
    tools_.SetUnread(kFriendRequestsUnreadId, unread);
  }
  int ModifyRemark(const WString& id, const WString& remark) override {
    return tools_.ModifyFriendRemark(id, remark);
  }
  void DeleteFriend(const WString& id) override { tools_.FriendList_DeleteFriend(id); }
  void RefreshFriends() override { tools_.RequestFriendList(); }

 private:
  CChatTools& tools_;
  FaceFetcher faces_;
};

}  // namespace

FriendListEntry ListEntryOf(const FriendsList_Stru& friendRecord) {
  return {friendRecord.identifier, CChatTools::FriendDisplayName(friendRecord)};
}

std::unique_ptr<FriendListSource> MakeFriendListSource(CChatTools& tools) {
  return std::make_unique<ChatToolsFriendList>(tools);
}

}  // namespace service

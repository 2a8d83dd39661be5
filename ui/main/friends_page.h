#pragma once
// The friends page: the friend, group and request lists and the friend card,
// plugged into CIMWnd's routes. Each route goes to the one pane that acts on
// it; what crosses panes (opening a chat, the request entry's dot, the card
// of the selected friend) is decided here.

#include <ctime>
#include <functional>

#include "service/panes/friend_list_source.h"
#include "service/panes/group_list_source.h"
#include "service/panes/request_list_source.h"
#include "ui/main/conversation_list_pane.h"
#include "ui/main/friend_card.h"
#include "ui/main/friend_list_pane.h"
#include "ui/main/group_list_pane.h"
#include "ui/main/pane_routes.h"
#include "ui/main/request_list_pane.h"

namespace ui::main {

class FriendsPage : public FriendListRoutes {
 public:
  struct Sources {
    service::FriendListSource& friends;
    service::GroupListSource& groups;
    service::RequestListSource& requests;
  };

  FriendsPage(WindowImplBase& window, MainControls& controls, ConversationListPane& conversations,
              ChatNavigator& navigator, Sources sources, FriendCard::Confirm confirm);

  // After the skin is built.
  void SetUp();
  // Tests pin the clock.
  void SetClock(std::function<std::time_t()> clock) { clock_ = std::move(clock); }

  void UpdateFriendList() override;
  void UpdateGroupList() override { groups_.UpdateGroupList(); }
  void DisplayFriendRequireList() override;
  void RefreshNewFriendEntry() override { friends_.RefreshNewFriendEntry(); }
  void DeleteShownFriend() override { card_.DeleteFriend(card_.ShownId()); }
  void CommitRemarkEdit() override { card_.CommitRemarkEdit(); }
  void OnRequestAnswered(const FriendRequestResult& answer) override;
  void RefreshRequests() override;
  void RefetchProfiles() override { sources_.friends.RefreshFriends(); }
  void OnRemarkChanged(const WString& name) override;
  void OnKillFocus(const Control& control) override { card_.OnKillFocus(control); }
  void OnReturn(const Control& control) override;
  void UpdatePicture(const WString& id) override;
  void Clear() override;
  void HideCard() override { card_.Hide(); }

  void SelectFriend(const Control& item) override;
  void SelectGroup(const Control& item) override { OpenChat(groups_.IdOf(item), kGroupChat); }
  void ShowRequests() override;
  void ShowGroups() override;
  void ShowUserCard(const Control& image) override { SelectFriend(image); }
  WString FriendIdOf(const Control& control) const override { return friends_.IdOf(control); }
  void AcceptRequest(const Control& confirmButton) override { requests_.Accept(confirmButton); }
  void OpenChatWithShownFriend() override { OpenChat(card_.ShownId(), kFriendChat); }
  void OpenChatWithMenuFriend() override { OpenChat(menuTarget_, kFriendChat); }
  void DeleteMenuFriend() override { card_.DeleteFriend(menuTarget_); }
  void OpenGroupChat() override { OpenChat(menuTarget_, kGroupChat); }
  void RememberMenuTarget(const Control& item) override;
  bool OnDoubleClick(const Control& control) override;

  FriendListPane& friends() { return friends_; }
  GroupListPane& groups() { return groups_; }
  RequestListPane& requests() { return requests_; }
  FriendCard& card() { return card_; }

 private:
  static constexpr uint32_t kFriendChat = 1;
  static constexpr uint32_t kGroupChat = 2;
  // UpdateCovnID's modes for the friends page.
  static constexpr int kOpenChatMode = 2;
  static constexpr int kRequestsMode = 5;
  static constexpr int kGroupsMode = 6;
  static constexpr int kFriendCardMode = 7;

  // By value: the id may be the card's, which opening clears.
  void OpenChat(WString id, uint32_t convType);
  static bool IsFriendId(const WString& id);

  MainControls& controls_;
  ConversationListPane& conversations_;
  ChatNavigator& navigator_;
  Sources sources_;
  FriendListPane friends_;
  GroupListPane groups_;
  RequestListPane requests_;
  FriendCard card_;
  WString menuTarget_;
  std::function<std::time_t()> clock_;
};

}  // namespace ui::main

#include "ui/main/friends_page.h"

#include "platform/trace.h"
#include "service/current_conversation.h"
#include "ui/main/friend_rules.h"

namespace ui::main {

FriendsPage::FriendsPage(WindowImplBase& window, MainControls& controls,
                         ConversationListPane& conversations, ChatNavigator& navigator,
                         Sources sources, FriendCard::Confirm confirm)
    : controls_(controls),
      conversations_(conversations),
      navigator_(navigator),
      sources_(sources),
      friends_(controls, sources.friends),
      groups_(window, sources.groups),
      requests_(controls, sources.requests),
      card_(window, sources.friends, std::move(confirm)),
      clock_([] { return std::time(nullptr); }) {}

void FriendsPage::SetUp() {
  friends_.SetUp();
  groups_.SetUp();
  requests_.SetUp();
  card_.SetUp();
}

bool FriendsPage::IsFriendId(const WString& id) {
  return !id.empty() && id != kNewFriendsId && id != kGroupsId;
}

void FriendsPage::UpdateFriendList() {
  if (!controls_.searchEdit) return;
  conversations_.ChooseLeftPage();
  friends_.UpdateFriendList(card_.IsShown() ? card_.ShownId() : WString());
}

void FriendsPage::DisplayFriendRequireList() {
  requests_.DisplayFriendRequireList();
  // The list as it is now: a mark left from before it arrived goes when
  // nothing waits any more.
  if (!requests_.HasPending()) {
    sources_.friends.SetRequestsUnread(false);
    friends_.RefreshNewFriendEntry();
  }
}

void FriendsPage::RefreshRequests() {
  sources_.requests.Refresh();
  if (controls_.chatModule.GetCurSel() != kRequestsPage) sources_.friends.SetRequestsUnread(true);
}

void FriendsPage::OnRequestAnswered(const FriendRequestResult& answer) {
  if (answer.code == 0) return;
  platform::Trace("FriendsPage: accepting the request of %s failed: %d %s",
                  platform::Utf16ToUtf8(answer.identifier).c_str(), answer.code,
                  platform::Utf16ToUtf8(answer.desc).c_str());
  sources_.requests.Refresh();
}

void FriendsPage::OnRemarkChanged(const WString& name) {
  const WString& id = card_.ShownId();
  if (id.empty()) return;
  friends_.UpdateName(id, name);
  conversations_.UpdateName(id, name);
  if (service::CurrentConvId() == id) controls_.sessionName.SetText(name);
}

void FriendsPage::OnReturn(const Control& control) {
  if (control.GetName() == "FriendList_Info_RemarksEdit") card_.CommitRemarkEdit();
}

void FriendsPage::UpdatePicture(const WString& id) {
  friends_.UpdatePicture(id);
  groups_.UpdatePicture(id);
  requests_.UpdatePicture(id);
  card_.UpdatePicture(id);
}

void FriendsPage::Clear() {
  friends_.rows().RemoveAll();
  groups_.rows().RemoveAll();
  requests_.rows().RemoveAll();
  card_.Hide();
}

void FriendsPage::SelectFriend(const Control& item) {
  WString id = friends_.IdOf(item);
  if (id == kNewFriendsId) return ShowRequests();
  if (id == kGroupsId) return ShowGroups();
  std::optional<FriendsList_Stru> found = sources_.friends.FindFriend(id);
  if (!found) return;
  card_.FillPersonalInformation(*found);
  navigator_.UpdateCovnID(id, kFriendChat, kFriendCardMode);
}

void FriendsPage::ShowRequests() {
  card_.Hide();
  sources_.requests.ReportRead(static_cast<uint64_t>(clock_()));
  navigator_.UpdateCovnID(kNewFriendsId, kFriendChat, kRequestsMode);
}

void FriendsPage::ShowGroups() {
  card_.Hide();
  navigator_.UpdateCovnID(kGroupsId, kFriendChat, kGroupsMode);
}

void FriendsPage::RememberMenuTarget(const Control& item) {
  WString id = friends_.IdOf(item);
  menuTarget_ = id.empty() ? groups_.IdOf(item) : id;
}

bool FriendsPage::OnDoubleClick(const Control& control) {
  WString id = friends_.IdOf(control);
  if (!IsFriendId(id)) return false;
  OpenChat(id, kFriendChat);
  return true;
}

void FriendsPage::OpenChat(WString id, uint32_t convType) {
  if (id.empty()) return;
  card_.Hide();
  navigator_.UpdateCovnID(id, convType, kOpenChatMode);
}

}  // namespace ui::main

// CIMWnd's switch between its panes for a conversation or a friend page.
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/posting.h"
#include "ui/main/im_wnd.h"
#include "ui/main/unread_dots.h"

namespace msg = platform::msg;
using namespace ui::main;

namespace {

// Message view refresh mode 2: reload from the store, rebuild, go to the bottom.
constexpr platform::WPARAM kReloadAndShowLatest = 2;

}  // namespace

void CIMWnd::LoadConversationMessages() {
  service::Post(GetHWND(), msg::kRefreshMessageView, kReloadAndShowLatest);
}

void CIMWnd::UpdateCovnID(const WString& convId, uint32_t convType, int mode) {
  MainControls& c = controls_;
  c.chatModule.SetVisible(true);
  auto pages = [&c](int left, int right) {
    c.tabs.SelectItem(left);
    c.chatModule.SelectItem(right);
  };
  auto openAndLoad = [&] {
    service::SetCurrentConversation(convId, service::CurrentConvType());
    LoadConversationMessages();
    conversations_->InsertConverToConverList(convId, convType);
  };
  switch (mode) {
    case 0:
      pages(kConversationsPage, kChatPage);
      composer_->Clear();
      openAndLoad();
      break;
    case 1:
      pages(kFriendsPage, 2);
      service::SetCurrentConversation(convId, service::CurrentConvType());
      break;
    case 2:
      pages(kConversationsPage, kChatPage);
      c.recentConverBtn.Selected(true, true);
      composer_->Clear();
      SetPageButtonImages(c.recentConverBtn, c.friendsListBtn, true);
      c.searchEdit.SetText(WString());
      openAndLoad();
      break;
    case 3:
      pages(kConversationsPage, kChatPage);
      SetPageButtonImages(c.recentConverBtn, c.friendsListBtn, true);
      openAndLoad();
      break;
    case 4:
      pages(kConversationsPage, kChatPage);
      service::SetCurrentConversation(convId, convType);
      LoadConversationMessages();
      conversations_->InsertConverToConverList(convId, convType);
      break;
    case 5:
      pages(kFriendsPage, kRequestsPage);
      if (tools_.PendingRequests().empty()) tools_.RequestPendencyList(kPendencyListRefresh);
      tools_.SetUnread(u"-1", false);
      service::Post(GetHWND(), msg::kRefreshNewFriendEntry);
      service::Post(GetHWND(), msg::kFriendRequestListChanged);
      break;
    case 6:
      pages(kFriendsPage, 3);
      service::Post(GetHWND(), msg::kGroupListChanged);
      break;
    case 7:
      // The card of `convId` (a friend's card was opened from the list).
      if (!convId.empty()) shownProfileId_ = convId;
      pages(kFriendsPage, kEmptyChatPage);
      if (!shownProfileId_.empty()) tools_.RequestUserProfiles({shownProfileId_});
      service::Post(GetHWND(), msg::kFriendListChanged);
      service::Post(GetHWND(), msg::kRecentConversationsChanged);
      break;
    default:
      platform::Trace("UpdateCovnID: unknown mode %d", mode);
      break;
  }
}

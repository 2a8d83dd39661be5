#include "ui/main/chat_dialog_routes.h"

#include "platform/data_folders.h"
#include "platform/trace.h"
#include "service/current_conversation.h"
#include "service/panes/add_friend_source.h"
#include "ui/dialogs/add_friend_menu.h"
#include "ui/dialogs/add_friend_wnd.h"
#include "ui/dialogs/create_group.h"
#include "ui/dialogs/dis_play_user_info.h"
#include "ui/dialogs/form_group_chat.h"
#include "ui/dialogs/friend_list_person_info.h"
#include "ui/dialogs/group_function.h"
#include "ui/dialogs/set_up.h"

namespace ui::main {
namespace {

constexpr uint32_t kFriendChat = 1;
constexpr uint32_t kGroupChat = 2;
// UpdateCovnID: open the conversation from a list (as the friends page does).
constexpr int kOpenChatMode = 2;

}  // namespace

ChatDialogRoutes::ChatDialogRoutes(WindowImplBase& window, CChatTools& tools,
                                   ChatNavigator& navigator)
    : window_(window),
      tools_(tools),
      navigator_(navigator),
      groups_(service::MakeGroupSource(tools)) {}

void ChatDialogRoutes::OpenAddMenu(const Control& button) {
  const Rect window = window_.GetWindowRect();
  const Rect pos = button.GetPos();
  CAddFriendMenu::Open(&window_, Point{window.left + pos.left, window.top + pos.bottom});
}

void ChatDialogRoutes::OpenAddFriend() {
  service::ChatToolsAddFriendSource source(tools_);
  AddFriendWnd dialog(source);
  dialog.RunModal(&window_);
}

void ChatDialogRoutes::OpenCreateGroup() {
  CreateGroup dialog(*groups_);
  dialog.RunModal(&window_);
}

void ChatDialogRoutes::OpenGroupFunction(const Control& button) {
  if (service::CurrentConvType() != kGroupChat) {
    // A group from this chat: only with a friend the service knows.
    const WString peer = service::CurrentPeerId();
    if (!groups_->FindFriend(peer)) return;
    CFormGroupChat dialog(*groups_, peer);
    dialog.RunModal(&window_);
    return;
  }
  const Rect window = window_.GetWindowRect();
  const Rect pos = button.GetPos();
  GroupFunction panel(*groups_, service::CurrentConvId(),
                      Point{window.left + pos.right, window.top + pos.bottom},
                      [this](const WString& id) { OpenChatWith(id); });
  panel.RunModal(&window_);
}

void ChatDialogRoutes::OpenFriendCard(const WString& id) {
  if (!groups_->FindFriend(id)) return;
  auto* card = new CFriendList_UserInfo(
      *groups_, id, [this](const WString& chatWith) { OpenChatWith(chatWith); });
  card->ShowDialog(&window_);  // deletes itself when closed
}

void ChatDialogRoutes::OpenUserInfo(const WString& id) {
  if (id.empty()) return;
  CDisPlayUserInfo card(*groups_, id, [this](const WString& chatWith) { OpenChatWith(chatWith); });
  card.RunModal(&window_);
}

void ChatDialogRoutes::OpenChatWith(const WString& id) {
  navigator_.UpdateCovnID(id, kFriendChat, kOpenChatMode);
}

void ChatDialogRoutes::OpenSettings(const Control& button) {
  const Rect window = window_.GetWindowRect();
  const Rect pos = button.GetPos();
  CSetUp dialog(platform::DataFolders::Instance());
  dialog.SetAnchor(Point{window.left + pos.right, window.top + pos.bottom});
  dialog.RunModal(&window_);
}

void ChatDialogRoutes::AddFriendByAccount(const WString& account) {
  if (account.empty()) {
    platform::Trace("IMWnd_AddFriend: no account typed, no request sent");
    return;
  }
  service::ChatToolsAddFriendSource(tools_).RequestFriend(account, u"账号查找", u"加好友");
}

}  // namespace ui::main

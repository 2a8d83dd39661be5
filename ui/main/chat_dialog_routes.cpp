#include "ui/main/chat_dialog_routes.h"

#include "platform/data_folders.h"
#include "platform/trace.h"
#include "service/panes/add_friend_source.h"
#include "ui/dialogs/add_friend_menu.h"
#include "ui/dialogs/add_friend_wnd.h"
#include "ui/dialogs/set_up.h"

namespace ui::main {

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

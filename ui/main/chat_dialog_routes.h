#pragma once
// The dialogs the chat window opens: the add menu at CreateGroupBtn, the
// add-friend dialog (3162), the settings dialog at IMSetUp, and the friend
// request of the search row's IMWnd_AddFriend button.

#include "ui/kit/window_impl_base.h"
#include "ui/main/pane_routes.h"

class CChatTools;

namespace ui::main {

class ChatDialogRoutes : public DialogRoutes {
 public:
  ChatDialogRoutes(WindowImplBase& window, CChatTools& tools) : window_(window), tools_(tools) {}

  void OpenSettings(const Control& button) override;
  void AddFriendByAccount(const WString& account) override;
  void OpenAddMenu(const Control& button) override;
  void OpenAddFriend() override;

 private:
  WindowImplBase& window_;
  CChatTools& tools_;
};

}  // namespace ui::main

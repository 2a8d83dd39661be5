#pragma once
// The dialogs the chat window opens: the add menu at CreateGroupBtn, the
// add-friend dialog (3162), the create-group picker (3163), the settings
// dialog at IMSetUp, the friend request of the search row's IMWnd_AddFriend
// button, from GroupFunctionBtn the group made from a one-to-one chat
// (CFormGroupChat) or the group panel, and the user cards.

#include <memory>

#include "service/panes/group_source.h"
#include "ui/kit/window_impl_base.h"
#include "ui/main/conversation_list_pane.h"
#include "ui/main/pane_routes.h"

class CChatTools;

namespace ui::main {

class ChatDialogRoutes : public DialogRoutes {
 public:
  ChatDialogRoutes(WindowImplBase& window, CChatTools& tools, ChatNavigator& navigator);

  void OpenSettings(const Control& button) override;
  void AddFriendByAccount(const WString& account) override;
  void OpenAddMenu(const Control& button) override;
  void OpenAddFriend() override;
  void OpenCreateGroup() override;
  void OpenGroupFunction(const Control& button) override;
  void OpenFriendCard(const WString& id) override;
  void OpenUserInfo(const WString& id) override;

 private:
  void OpenChatWith(const WString& id);

  WindowImplBase& window_;
  CChatTools& tools_;
  ChatNavigator& navigator_;
  // Lives as long as the window: a self-deleting card may outlast its opener.
  std::unique_ptr<service::GroupSource> groups_;
};

}  // namespace ui::main

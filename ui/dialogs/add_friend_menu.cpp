#include "ui/dialogs/add_friend_menu.h"

#include "platform/window_messages.h"
#include "ui/dialogs/dialog_rows.h"

CAddFriendMenu::CAddFriendMenu() : DialogFrame(ui::dialogs::kAddFriendMenu) {}

CAddFriendMenu* CAddFriendMenu::Open(ui::WindowImplBase* owner, ui::Point screenPoint) {
  auto* menu = new CAddFriendMenu();
  return menu->ShowAt(owner, screenPoint) ? menu : nullptr;  // a failed one has deleted itself
}

void CAddFriendMenu::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyItemClick) {
    // Item names are matched without regard to case.
    const std::string name = msg.pSender.GetName();
    if (ui::EqualsNoCase(name, "Elem_Menu_AddFriend")) {
      AskOwner(platform::msg::kOpenAddFriend);
    } else if (ui::EqualsNoCase(name, "Elem_Menu_CreateGroup")) {
      AskOwner(platform::msg::kOpenCreateGroup);
    }
  }
  DialogFrame::Notify(msg);
}

void CAddFriendMenu::AskOwner(unsigned message) {
  if (GetOwner() != nullptr) platform::PostMessage(GetOwner()->GetHWND(), message, 0, 0);
  Close(1);
}

#pragma once
// CAddFriendMenu: the small menu under the main window's CreateGroupBtn with
// "添加好友" and "创建群组". Choosing an item asks the owner to open the
// matching dialog (3162 or 3163); a click anywhere else closes the menu and
// asks for nothing. The menu deletes itself when it closes.

#include "ui/dialogs/dialog_frame.h"

class CAddFriendMenu final : public ui::DialogFrame {
 public:
  // Shown with activation, its top-left corner at `screenPoint`. Null when the
  // window could not be made.
  static CAddFriendMenu* Open(ui::WindowImplBase* owner, ui::Point screenPoint);

 protected:
  void Notify(ui::TNotifyUI& msg) override;

 private:
  CAddFriendMenu();
  ~CAddFriendMenu() override = default;

  void AskOwner(unsigned message);
};

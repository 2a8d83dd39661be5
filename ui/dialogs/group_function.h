#pragma once
// GroupFunction: the group panel of a group chat, opened at GroupFunctionBtn
// and run modally. It shows the group's name (renamed in place), notice,
// member count, the user's role and the members with their pictures (a
// click opens the member's card), and leads to adding and removing members,
// handing the group to a new owner, leaving ("您确定要退出群聊吗？") and
// disbanding (DisbandGroup). Owners see transfer and disband, the others
// leave: the owner must hand the group on or disband it before leaving.
// The panel closes once the user is no longer in the group.

#include <functional>

#include "service/panes/group_source.h"
#include "ui/dialogs/dialog_frame.h"
#include "ui/dialogs/person_picker.h"

class GroupFunction final : public ui::DialogFrame {
 public:
  using OpenChat = std::function<void(const WString& id)>;

  // The panel's top-right corner goes to `anchor` (the button's lower right).
  GroupFunction(service::GroupSource& source, WString groupId, ui::Point anchor, OpenChat openChat);

  // The user left the group or disbanded it.
  bool Gone() const { return gone_; }
  ui::PersonPicker& members() { return members_; }

 protected:
  void InitWindow() override;
  void Notify(ui::TNotifyUI& msg) override;
  void PlaceWindow() override;

 private:
  // The panel from what the service knows of the group.
  void Show();
  void Rename();
  void Leave();
  void Disband();
  // A picker or card over the panel; the panel shows the group again after.
  template <class Dialog, class... Args>
  void RunOver(Args&&... args);

  service::GroupSource& source_;
  WString groupId_;
  ui::Point anchor_;
  OpenChat openChat_;
  ui::PersonPicker members_;
  bool gone_ = false;
};

#pragma once
// The frame of the group member pickers: a list of people to pick
// (ui/dialogs/person_picker.h), a count, cancel and confirm. The controls are
// named after the dialog's prefix ("<prefix>_List", "<prefix>_Count",
// "<prefix>_ConfirmBtn", "<prefix>_CancelBtn", "<prefix>_closebtn", and
// "<prefix>_NameEdit" where a group is named). Confirm is enabled while
// someone is picked. A picker says whom it offers when its window is made
// and what confirming does; failures are told by the operation itself.

#include <string>
#include <vector>

#include "service/panes/group_source.h"
#include "ui/dialogs/dialog_frame.h"
#include "ui/dialogs/person_picker.h"

namespace ui {

class MemberPicker : public DialogFrame {
 public:
  MemberPicker(const DialogRow& row, std::string prefix, service::GroupSource& source,
               PersonPicker::Mode mode);

  PersonPicker& picker() { return picker_; }
  // The confirmed action succeeded (the dialog then closed with code 1).
  bool Succeeded() const { return succeeded_; }

 protected:
  void Notify(TNotifyUI& msg) override;
  // On "windowinit": fills the picker; false closes the dialog (the user
  // has been told why, or there is nothing to tell).
  virtual bool Offer() = 0;
  // Confirm with someone picked; true when the action succeeded.
  virtual bool Act(const std::vector<service::GroupPerson>& chosen) = 0;

  Control Named(const char* role) const { return FindControl(prefix_ + "_" + role); }
  service::GroupSource& source_;

 private:
  void ShowCount();
  void Confirm();

  std::string prefix_;
  PersonPicker::Mode mode_;
  PersonPicker picker_;
  bool succeeded_ = false;
};

}  // namespace ui

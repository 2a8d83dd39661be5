#include "ui/dialogs/disband_group.h"

#include "ui/dialogs/dialog_rows.h"

DisbandGroup::DisbandGroup(service::GroupSource& source, WString groupId, bool& disbanded)
    : DialogFrame(ui::dialogs::kDisbandGroup),
      source_(source),
      groupId_(std::move(groupId)),
      disbanded_(disbanded) {}

void DisbandGroup::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyClick) {
    const std::string name = msg.pSender.GetName();
    if (name == "DisbandGroup_ConfirmBtn") {
      disbanded_ = source_.Disband(groupId_) == host::GroupActionResult::kDone;
      Close(disbanded_ ? 1 : 0);
    } else if (name == "DisbandGroup_CancelBtn" || name == "DisbandGroup_closebtn") {
      Close(0);
    }
  }
  DialogFrame::Notify(msg);
}

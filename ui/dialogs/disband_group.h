#pragma once
// DisbandGroup: the question before a group is disbanded, and the disband
// itself (the owner only: "非管理员不能删除群成员！！！"; a refusal shows
// "解散群组失败！！！"). Made with `new`; it deletes itself when closed, so the
// opener reads the outcome from the flag it lent.

#include "service/panes/group_source.h"
#include "ui/dialogs/dialog_frame.h"

class DisbandGroup final : public ui::DialogFrame {
 public:
  // `disbanded` is set when the group was disbanded; it must outlive the dialog.
  DisbandGroup(service::GroupSource& source, WString groupId, bool& disbanded);

 protected:
  void Notify(ui::TNotifyUI& msg) override;

 private:
  service::GroupSource& source_;
  WString groupId_;
  bool& disbanded_;
};

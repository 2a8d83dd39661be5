#pragma once
// TransferManage: the owner picks one member as the new owner. The host's
// pre-check, the question "确定选择%s为新群主,你将放弃群主身份。", the
// transfer and its texts ("转移群组权限成功!" with " "%s" 已成为新群主", or
// "转移群组权限失败!") are the owner transfer's.

#include "ui/dialogs/member_picker.h"

class TransferManage final : public ui::MemberPicker {
 public:
  TransferManage(service::GroupSource& source, WString groupId);

 protected:
  bool Offer() override;
  bool Act(const std::vector<service::GroupPerson>& chosen) override;

 private:
  WString groupId_;
};

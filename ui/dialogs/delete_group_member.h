#pragma once
// DeleteGroupMember: the owner removes members. The user is asked
// "是否要删除群成员!" first; the host's role decides ("非管理员不能删除群成员！！！"
// for anyone but the owner), a refusal shows "删除群成员失败！！！".

#include "ui/dialogs/member_picker.h"

class DeleteGroupMember final : public ui::MemberPicker {
 public:
  DeleteGroupMember(service::GroupSource& source, WString groupId);

 protected:
  bool Offer() override;
  bool Act(const std::vector<service::GroupPerson>& chosen) override;

 private:
  WString groupId_;
};

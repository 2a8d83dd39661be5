#pragma once
// AddGrouMember: friends who are not members of the group yet. The group is
// looked up first ("查询群信息失败!" titled "查询群信息" closes the dialog);
// a refused addition shows "添加群成员失败!" and the dialog stays open.

#include "ui/dialogs/member_picker.h"

class AddGrouMember final : public ui::MemberPicker {
 public:
  AddGrouMember(service::GroupSource& source, WString groupId);

 protected:
  bool Offer() override;
  bool Act(const std::vector<service::GroupPerson>& chosen) override;

 private:
  WString groupId_;
};

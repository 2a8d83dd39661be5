#pragma once
// CreateGroup: the user picks friends and names the group; the host's cloud
// group ("Public") is created first, then the chat group. A refusal is told
// with "创建群失败。" and the dialog stays open.

#include "ui/dialogs/member_picker.h"

class CreateGroup final : public ui::MemberPicker {
 public:
  explicit CreateGroup(service::GroupSource& source);

  // The create step both creating pickers share: the typed name (or one made
  // from the members' names) and the people picked.
  static bool CreateFrom(service::GroupSource& source, const ui::Control& nameEdit,
                         const std::vector<service::GroupPerson>& chosen);

 protected:
  bool Offer() override;
  bool Act(const std::vector<service::GroupPerson>& chosen) override;
};

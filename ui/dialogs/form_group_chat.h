#pragma once
// CFormGroupChat: a group made from a one-to-one chat. The peer is picked
// already (and stays picked); the user adds more friends and names the
// group; creating goes as in CreateGroup.

#include "ui/dialogs/member_picker.h"

class CFormGroupChat final : public ui::MemberPicker {
 public:
  CFormGroupChat(service::GroupSource& source, WString peerId);

 protected:
  bool Offer() override;
  bool Act(const std::vector<service::GroupPerson>& chosen) override;

 private:
  WString peerId_;
};

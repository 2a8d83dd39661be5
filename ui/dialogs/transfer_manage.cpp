#include "ui/dialogs/transfer_manage.h"

#include "service/panes/group_picks.h"
#include "ui/dialogs/dialog_rows.h"

TransferManage::TransferManage(service::GroupSource& source, WString groupId)
    : MemberPicker(ui::dialogs::kTransferManage, "TransferManage", source,
                   ui::PersonPicker::Mode::kOne),
      groupId_(std::move(groupId)) {}

bool TransferManage::Offer() {
  if (source_.LookUpGroup(groupId_, host::GroupQueryWording::kCommon) !=
      host::GroupLookup::kFound) {
    return false;
  }
  picker().Fill(service::MembersBesidesUser(source_.Members(groupId_), source_.UserId()));
  return true;
}

bool TransferManage::Act(const std::vector<service::GroupPerson>& chosen) {
  return source_.TransferOwner(groupId_, chosen.front()) == host::OwnerTransferResult::kDone;
}

#include "ui/dialogs/add_grou_member.h"

#include "service/panes/group_picks.h"
#include "ui/dialogs/dialog_rows.h"

AddGrouMember::AddGrouMember(service::GroupSource& source, WString groupId)
    : MemberPicker(ui::dialogs::kAddGrouMember, "AddGroupMember", source,
                   ui::PersonPicker::Mode::kMany),
      groupId_(std::move(groupId)) {}

bool AddGrouMember::Offer() {
  if (source_.LookUpGroup(groupId_, host::GroupQueryWording::kAddMembers) !=
      host::GroupLookup::kFound) {
    return false;
  }
  picker().Fill(service::FriendsNotInGroup(source_.Friends(), source_.Members(groupId_)));
  return true;
}

bool AddGrouMember::Act(const std::vector<service::GroupPerson>& chosen) {
  return source_.AddMembers(groupId_, chosen) == host::GroupActionResult::kDone;
}

#include "ui/dialogs/delete_group_member.h"

#include "host/host_texts.h"
#include "service/panes/group_picks.h"
#include "ui/dialogs/dialog_rows.h"

DeleteGroupMember::DeleteGroupMember(service::GroupSource& source, WString groupId)
    : MemberPicker(ui::dialogs::kDeleteGroupMember, "DeleteGroupMember", source,
                   ui::PersonPicker::Mode::kMany),
      groupId_(std::move(groupId)) {}

bool DeleteGroupMember::Offer() {
  if (source_.LookUpGroup(groupId_, host::GroupQueryWording::kCommon) !=
      host::GroupLookup::kFound) {
    return false;
  }
  picker().Fill(service::MembersBesidesUser(source_.Members(groupId_), source_.UserId()));
  return true;
}

bool DeleteGroupMember::Act(const std::vector<service::GroupPerson>& chosen) {
  if (!source_.Prompt().Confirm(platform::W(host::text::kNoticeTitle), u"是否要删除群成员!")) {
    return false;
  }
  return source_.RemoveMembers(groupId_, chosen) == host::GroupActionResult::kDone;
}

#include "ui/dialogs/create_group.h"

#include "host/host_texts.h"
#include "service/panes/group_picks.h"
#include "ui/dialogs/dialog_rows.h"

using platform::W;

CreateGroup::CreateGroup(service::GroupSource& source)
    : MemberPicker(ui::dialogs::kCreateGroup, "CreateGroup", source,
                   ui::PersonPicker::Mode::kMany) {}

bool CreateGroup::Offer() {
  picker().Fill(source_.Friends());
  return true;
}

bool CreateGroup::Act(const std::vector<service::GroupPerson>& chosen) {
  return CreateFrom(source_, Named("NameEdit"), chosen);
}

bool CreateGroup::CreateFrom(service::GroupSource& source, const ui::Control& nameEdit,
                             const std::vector<service::GroupPerson>& chosen) {
  WString name = service::CleanGroupName(nameEdit.GetText());
  if (name.empty()) {
    name = service::DefaultGroupName(source.CardOf(source.UserId()).person.name, chosen);
  }
  if (source.CreateGroup(name, chosen)) return true;
  source.Prompt().ShowMessage(W(host::text::kErrorTitle), W(host::text::kCreateGroupFailed));
  return false;
}

#include "ui/dialogs/form_group_chat.h"

#include "ui/dialogs/create_group.h"
#include "ui/dialogs/dialog_rows.h"

CFormGroupChat::CFormGroupChat(service::GroupSource& source, WString peerId)
    : MemberPicker(ui::dialogs::kFormGroupChat, "FormGroupChat", source,
                   ui::PersonPicker::Mode::kMany),
      peerId_(std::move(peerId)) {}

bool CFormGroupChat::Offer() {
  // Only a friend's chat becomes a group (the chat window checks it too).
  if (!source_.FindFriend(peerId_)) return false;
  picker().Fill(source_.Friends());
  picker().Pick(peerId_, true);
  return true;
}

bool CFormGroupChat::Act(const std::vector<service::GroupPerson>& chosen) {
  return CreateGroup::CreateFrom(source_, Named("NameEdit"), chosen);
}

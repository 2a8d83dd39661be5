#pragma once
// A person's card opened from a chat.

#include "ui/dialogs/user_info_card.h"

class CDisPlayUserInfo final : public ui::UserInfoCard {
 public:
  CDisPlayUserInfo(service::GroupSource& source, WString userId, OpenChat openChat);
};

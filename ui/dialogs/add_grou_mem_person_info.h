#pragma once
// Opened from the group panel's member list.

#include "ui/dialogs/user_info_card.h"

class CAddGrouMem_PersonInfo final : public ui::UserInfoCard {
 public:
  CAddGrouMem_PersonInfo(service::GroupSource& source, WString userId, OpenChat openChat);
};

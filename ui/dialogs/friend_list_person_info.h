#pragma once
// The card of a friend list picture: made with `new`, deletes itself, and
// closes when it loses the focus.

#include "ui/dialogs/user_info_card.h"

class CFriendList_UserInfo final : public ui::UserInfoCard {
 public:
  CFriendList_UserInfo(service::GroupSource& source, WString userId, OpenChat openChat);
};

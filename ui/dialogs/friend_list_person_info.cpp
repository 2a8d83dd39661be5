#include "ui/dialogs/friend_list_person_info.h"

#include "ui/dialogs/dialog_rows.h"

CFriendList_UserInfo::CFriendList_UserInfo(service::GroupSource& source, WString userId,
                                           OpenChat openChat)
    : UserInfoCard(ui::dialogs::kFriendListUserInfo, source, std::move(userId),
                   std::move(openChat)) {}

#include "ui/dialogs/dis_play_user_info.h"

#include "ui/dialogs/dialog_rows.h"

CDisPlayUserInfo::CDisPlayUserInfo(service::GroupSource& source, WString userId, OpenChat openChat)
    : UserInfoCard(ui::dialogs::kDisPlayUserInfo, source, std::move(userId), std::move(openChat)) {}

#include "ui/dialogs/add_grou_mem_person_info.h"

#include "ui/dialogs/dialog_rows.h"

CAddGrouMem_PersonInfo::CAddGrouMem_PersonInfo(service::GroupSource& source, WString userId,
                                               OpenChat openChat)
    : UserInfoCard(ui::dialogs::kAddGrouMemPersonInfo, source, std::move(userId),
                   std::move(openChat)) {}

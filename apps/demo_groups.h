#pragma once
// The group windows in the headless run: a group made from the chat with 王工
// (CFormGroupChat), its panel with a member's card and the pickers it leads
// to, the create-group picker from the add menu, and a friend's card from
// the friend list. Each is saved as a picture into `dataRoot`.

#include <string>
#include <vector>

#include "host/local/local_host.h"

namespace demo {

bool ShootGroupWindows(host::local::LocalHost& host, const std::string& dataRoot,
                       std::vector<std::string>& shots);

}  // namespace demo

// Built only while the service layer's friendship part has not landed
// (ui/CMakeLists.txt checks for service/friendship*.cpp): the friend-deleted
// message still frees its payload. Delete this file once that part is in.
#include "platform/trace.h"
#include "service/chat_tools.h"

void CChatTools::OnFriendsDeleted(std::unique_ptr<std::string> json) {
  platform::Trace("OnFriendsDeleted: friendship service not built yet, ids %s",
                  json ? json->c_str() : "");
}

#include "service/module_counters.h"

#include "host/shared_session.h"
#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "service/chat_tools.h"

namespace service {

ModuleCounters& Counters() {
  static ModuleCounters counters;
  return counters;
}

bool SignIn(CChatTools& tools, WString userId, WString userSig) {
  ModuleCounters& counters = Counters();
  if (counters.initialised.load() < 1) {
    tools.Init();
    counters.initialised.fetch_add(1);
  }
  // A second sign-in while one is accepted is refused without the SDK.
  if (counters.logged_in.load() >= 1) return false;
  if (!tools.Login(std::move(userId), std::move(userSig))) return false;
  counters.logged_in.fetch_add(1);
  return true;
}

void InternalLogout(CChatTools& tools, bool leaveSharedSession) {
  Counters().logged_in.fetch_sub(1);
  platform::Trace("User Id : %s", platform::Utf16ToUtf8(tools.UserId()).c_str());
  // The module does not wait for the result callback.
  if (TIMLogout(&CChatTools::TIMLogoutFunc, &tools) != 0) {
    platform::Trace("登出失败!!!");
  } else {
    platform::Trace("登出成功!!!");
  }
  WindowPort& window = tools.Window();
  window.ResetWindow();
  if (window.IsWindowVisible()) window.HideWindow();
  tools.ClearResource();
  if (leaveSharedSession) host::LeaveSharedSessionAtLogout();
}

}  // namespace service

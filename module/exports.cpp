// The eight exported entry points.
#include <memory>

#include <QApplication>

#include "module/im_exports.h"
#include "module/module_objects.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "platform/trace.h"
#include "platform/window_messages.h"
#include "service/chat_tools.h"
#include "service/module_counters.h"
#include "service/posting.h"
#include "ui/kit/resources.h"
#include "ui/main/im_wnd.h"

#define IM_EXPORT __attribute__((visibility("default")))

namespace {

ui::Rect ToRect(const ImRect& r) {
  return ui::Rect{r.left, r.top, r.right, r.bottom};
}

bool ShownWindow() {
  CIMWnd& window = module::MainWindow();
  return window.IsCreated() && window.IsWindowVisible();
}

}  // namespace

extern "C" {

IM_EXPORT int g_CreateWindow(void* /*instance*/, void* parent) {
  CIMWnd& window = module::MainWindow();
  if (window.IsCreated()) return 0;
  if (QApplication::instance() == nullptr) {
    platform::Trace("g_CreateWindow: the host runs no QApplication, no window");
    return 0;
  }
  window.SetParam(parent);
  // DuiLibRes is looked up beside the host's executable.
  ui::SetResourceRoot(platform::ToNativePath(platform::ExecutableFolder()));
  return window.CreateChatWindow() ? 1 : 0;
}

IM_EXPORT bool LoginIm(WString userId, WString userSig) {
  // The id names the user's folders: one that could reach outside them is
  // refused before anything is created or signed in.
  if (!platform::DataFolders::Instance().Prepare(userId)) return false;
  g_CreateWindow(nullptr, module::HostMainWindow());
  bool accepted = service::SignIn(module::Tools(), std::move(userId), std::move(userSig));
  module::ArmUnloadAfterStartup();
  return accepted;
}

IM_EXPORT void LogOutIm() {
  service::InternalLogout(module::Tools(), true);
}

IM_EXPORT int DisplayIm(intptr_t, intptr_t, const ImRect* rect) {
  CIMWnd& window = module::MainWindow();
  if (!window.IsCreated()) return 0;
  if (rect != nullptr) window.MoveWindow(ToRect(*rect));
  if (window.IsWindowVisible()) return 1;
  window.HideChatWindow();
  window.ShowChat(true);
  return 1;
}

IM_EXPORT int MoveIm(const ImRect* rect) {
  if (!ShownWindow() || rect == nullptr) return 0;
  service::WindowRect copy{rect->left, rect->top, rect->right, rect->bottom};
  bool queued = service::PostPayload<platform::msg::kMoveWindow>(module::MainWindow().GetHWND(),
                                                                 service::kNoSession, copy);
  return queued ? 1 : 0;
}

IM_EXPORT int HideIm() {
  if (!ShownWindow()) return 0;
  module::MainWindow().HideChat();
  return 1;
}

IM_EXPORT int EntryShareChatIm() {
  if (!ShownWindow()) return 0;
  module::MainWindow().HideChatWindow();
  return 1;
}

IM_EXPORT int ExitShareChatIm() {
  CIMWnd& window = module::MainWindow();
  if (!window.IsCreated()) return 0;
  window.DisplayChatWindow();
  return 1;
}

}  // extern "C"

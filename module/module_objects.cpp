// Library load and unload, and the module's singletons.
#include "module/module_objects.h"

#include <QApplication>
#include <QMainWindow>

#include <atomic>

#include "host/startup_registration.h"
#include "imsdk/im_sdk.h"
#include "platform/module_workers.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "ui/main/im_wnd.h"
#include "ui/port/chat_window_port.h"

namespace module {
namespace {

// Built at load; see OnLibraryUnload for why they are not plain statics.
CIMWnd* g_window = nullptr;
ui::ChatWindowPort* g_port = nullptr;

__attribute__((constructor)) void OnLibraryLoad() {
  CChatTools& tools = CChatTools::Instance();
  g_window = new CIMWnd(tools);  // creates the named mutexes
  g_port = new ui::ChatWindowPort(*g_window);
  tools.AttachWindow(g_port);
}

void UnloadOnce() {
  static std::atomic<bool> done{false};
  if (done.exchange(true)) return;
  // The module's own threads first: their code goes with this library.
  platform::ModuleWorkers::Instance().StopAll();
  platform::Trace("IM SDK卸载 开始!!!");
  if (TIMUninit() == 0) {
    platform::Trace("IM SDK卸载结束!!!");
  } else {
    platform::Trace("IM SDK 卸载失败！");
  }
  // Any a last callback started before the SDK stopped.
  platform::ModuleWorkers::Instance().StopAll();
  // No SDK callback runs any more; the service stops reaching the window.
  CChatTools::Instance().AttachWindow(nullptr);
  // The host keeps the two callbacks given at start-up; their code leaves
  // with this library, so they are withdrawn while it is still mapped.
  host::RegisterModuleCallbacks({}, {});
  // Widgets can only go while the application object lives. A host that
  // unloads the library after its QApplication is gone leaves them behind.
  if (QApplication::instance() == nullptr && g_window->IsCreated()) return;
  g_window->DestroyChatWindow();
  // The window's toolkit objects are deleted later by the event loop; their
  // code goes with this library, so that has to happen now.
  if (QCoreApplication::instance() != nullptr) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  delete g_port;
  delete g_window;
  g_port = nullptr;
  g_window = nullptr;
}

// Runs the unload when the library is unloaded, or at process exit when the
// host never unloads it (or cannot: a thread-local object made by the library
// on a live thread keeps it mapped). At exit, objects of the SDK library that
// came into being with TIMInit are destroyed in reverse order of creation; a
// guard created after TIMInit is destroyed before them, so TIMUninit still
// finds the SDK whole.
struct UnloadGuard {
  ~UnloadGuard() { UnloadOnce(); }
};

__attribute__((destructor)) void OnLibraryUnload() {
  UnloadOnce();
}

}  // namespace

void ArmUnloadAfterStartup() {
  static UnloadGuard guard;
}

CIMWnd& MainWindow() {
  return *g_window;
}

CChatTools& Tools() {
  return CChatTools::Instance();
}

void* HostMainWindow() {
  if (QApplication::instance() == nullptr) return nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (qobject_cast<QMainWindow*>(widget) != nullptr) {
      return reinterpret_cast<void*>(static_cast<uintptr_t>(widget->winId()));
    }
  }
  return nullptr;
}

}  // namespace module

// The demo host: stands in for the drawing application. It loads the chat
// module with dlopen, resolves the eight exports by name, installs the local
// host, seeds the chat engine with a small world, creates the chat window,
// signs in and shows the chat beside a placeholder drawing.
//
// With a display it stays open until the drawing window is closed. Without
// one (no DISPLAY, or --headless) it runs a short script offscreen, writes a
// screenshot of the chat window into the data folder and exits.
//
// With --server xmpp the SDK talks to a throwaway Prosody instead of the
// embedded engine, and 王工 is an independent XMPP client.
#include <QApplication>
#include <QDeadlineTimer>
#include <QFont>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "apps/demo_dialogs.h"
#include "apps/demo_drawings.h"
#include "apps/demo_script.h"
#include "apps/demo_world.h"
#include "apps/demo_xmpp.h"
#include "apps/host_frame.h"
#include "host/local/engine_group_link.h"
#include "host/local/local_host.h"
#include "imsdk/engine_control.h"
#include "module/module_library.h"
#include "platform/folders.h"
#include "platform/strings.h"

namespace {

constexpr int kHeadlessLimitSeconds = 55;

bool WantsXmppServer(int argc, char** argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--server") == 0) return std::strcmp(argv[i + 1], "xmpp") == 0;
  }
  return false;
}

bool WantsHeadless(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--headless") == 0) return true;
  }
  const char* display = std::getenv("DISPLAY");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (display == nullptr || *display == '\0') && (wayland == nullptr || *wayland == '\0');
}

// Ends a stuck headless run instead of letting CI hang.
class Watchdog {
 public:
  explicit Watchdog(int seconds)
      : thread_([this, seconds] {
          std::unique_lock lock(mutex_);
          if (!done_.wait_for(lock, std::chrono::seconds(seconds), [this] { return finished_; })) {
            std::fprintf(stderr, "demo: no result after %d s, giving up\n", seconds);
            std::_Exit(2);
          }
        }) {}
  ~Watchdog() {
    {
      std::lock_guard lock(mutex_);
      finished_ = true;
    }
    done_.notify_one();
    thread_.join();
  }

 private:
  std::mutex mutex_;
  std::condition_variable done_;
  bool finished_ = false;
  std::thread thread_;
};

bool WaitForSignIn() {
  QDeadlineTimer deadline(10000);
  while (imsdk::EngineControl::Instance().SignedInAccount() != demo::kUser) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

void SendGreetingsLater(const demo::World& world) {
  QTimer::singleShot(1500, [world] {
    imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
    engine.SendText(demo::kAnswering, kTIMConv_C2C, demo::kUser, "你好，一层平面图我已经上传了。");
    engine.SendText(demo::kQuiet, kTIMConv_Group, world.groupId, "楼梯间的尺寸请再核对一下。");
  });
}

}  // namespace

int main(int argc, char** argv) {
  bool headless = WantsHeadless(argc, argv);
  if (headless) qputenv("QT_QPA_PLATFORM", "offscreen");
  // The module looks for DuiLibRes beside the host's executable; the demo's
  // resources are those of this source tree.
  setenv("IM_MODULE_DIR", IM_RESOURCE_ROOT, 0);
  std::unique_ptr<Watchdog> watchdog;
  if (headless) watchdog = std::make_unique<Watchdog>(kHeadlessLimitSeconds);

  QApplication app(argc, argv);
  QApplication::setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
  const std::string dataRoot =
      platform::ToNativePath(platform::CommonDocumentsFolder()) + "/Vantorel";

  host::local::LocalHost host(dataRoot + "/demo-cloud-space");
  host.Install();
  // The host's cloud groups follow the engine's groups from here on.
  host::local::EngineGroupLink groupLink(host);
  const bool onXmpp = WantsXmppServer(argc, argv);
  const std::string sdkConfigFolder = dataRoot + "/cfg";
  demo::XmppWorld xmpp;
  demo::World world;
  if (onXmpp) {
    if (!xmpp.Start(sdkConfigFolder)) return 1;
  } else {
    demo::RemoveServerConfig(sdkConfigFolder);
    world = demo::SeedWorld(host);
    if (!host.FindGroup(platform::Utf8ToUtf16(world.groupId))) {
      std::fprintf(stderr, "demo: the host did not learn of the group %s\n", world.groupId.c_str());
      return 1;
    }
  }

  demo::HostFrame frame(host);
  frame.show();
  demo::OpenDrawingInHost(host, dataRoot);
  demo::GiveStrangerAnAvatar(host, dataRoot);

  const char* libraryPath = std::getenv("IM_MODULE_LIBRARY");
  im_exports::ModuleLibrary module(libraryPath ? libraryPath : IM_MODULE_LIBRARY_DEFAULT);
  if (!module.ok()) {
    std::fprintf(stderr, "demo: cannot load the chat module: %s\n", module.error().c_str());
    return 1;
  }
  std::printf("Loaded the chat module and resolved its eight exports.\n");
  int created = module.createWindow(nullptr, frame.NativeHandle());
  std::printf("g_CreateWindow: %d\n", created);
  if (onXmpp) {
    // The server's answer comes later; the script waits for the user's data.
    if (!module.login(u"10001", xmpp.UserSignature())) {
      std::fprintf(stderr, "demo: sign-in refused\n");
      return 1;
    }
    std::printf("Signing in as %s on the XMPP server.\n", demo::kUser);
  } else if (!module.login(u"10001", u"demo-signature") || !WaitForSignIn()) {
    std::fprintf(stderr, "demo: sign-in failed\n");
    return 1;
  } else {
    std::printf("Signed in as 张明 (%s); friends 王工 (answers) and 李工, group 图纸评审组.\n",
                demo::kUser);
  }
  QRect beside = frame.frameGeometry();
  ImRect chatRect{beside.right() + 10, beside.top(), beside.right() + 10 + 960, beside.top() + 680};
  std::printf("DisplayIm: %d\n", module.display(0, 0, &chatRect));
  // Leaving the shared chat in the drawing window: the host leaves, then
  // gives the chat window its full layout back.
  frame.SetLeaveAction([&module] {
    HostSystem* system = HostSystem::instance();
    HostAppService* app = system->GetAppService();
    HostCloudService* cloud = system->GetCloudService();
    if (app == nullptr || cloud == nullptr || !app->IsInSharedSession()) return;
    const WString text = app->GetSessionText();
    cloud->LeaveSharedSession(app->GetSessionGroupId(), app->GetSessionDrawingId(), text.c_str());
    app->EndSharedSession();
    module.exitShare();
  });

  int exitCode = 0;
  if (headless) {
    demo::ScriptResult result = onXmpp ? demo::RunXmppScript(xmpp, dataRoot)
                                       : demo::RunHeadlessScript(module, host, world, dataRoot);
    for (const std::string& screenshot : result.screenshots) {
      std::printf("Screenshot: %s\n", screenshot.c_str());
    }
    std::printf("Data tree: %s\n", dataRoot.c_str());
    std::printf("Chat.db:   %s/%s/db/Chat.db\n", dataRoot.c_str(), demo::kUser);
    exitCode = result.ok ? 0 : 1;
  } else {
    QTimer answering;
    if (onXmpp) {
      QTimer::singleShot(1500, [&xmpp] { xmpp.Greet("你好，一层平面图我已经上传了。"); });
      QObject::connect(&answering, &QTimer::timeout, [&xmpp] { xmpp.AnswerNewMessages(); });
      answering.start(200);
    } else {
      SendGreetingsLater(world);
    }
    std::printf("Data tree: %s (close the drawing window to quit)\n", dataRoot.c_str());
    app.exec();
  }
  module.logout();
  module.Unload();
  host.Uninstall();
  return exitCode;
}

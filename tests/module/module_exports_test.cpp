// The eight exports on the real library, loaded with dlopen as a host does.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLabel>
#include <QTimer>
#include <QWidget>

#include <json/json.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "host/local/local_host.h"
#include "imsdk/engine_control.h"
#include "module/module_library.h"

namespace {

using im_exports::ModuleLibrary;

bool PumpUntil(const std::function<bool()>& done, int milliseconds = 5000) {
  QDeadlineTimer deadline(milliseconds);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

QWidget* ChatWindow() {
  QWidget* found = nullptr;
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == QStringLiteral("CIMWnd")) found = w;
  }
  return found;
}

int CountChatWindows() {
  int n = 0;
  for (QWidget* w : QApplication::topLevelWidgets()) n += w->objectName() == "CIMWnd";
  return n;
}

// Lines of the SDK's call log written since the mark.
class CallLog {
 public:
  CallLog() : path_(std::getenv("IMSDK_CALL_LOG")) { mark_ = Lines().size(); }
  int Count(const std::string& function) const {
    int n = 0;
    std::vector<std::string> lines = Lines();
    for (size_t i = mark_; i < lines.size(); ++i) {
      Json::Value v;
      std::istringstream in(lines[i]);
      if (Json::parseFromStream(Json::CharReaderBuilder(), in, &v, nullptr) &&
          v["call"].asString() == function) {
        ++n;
      }
    }
    return n;
  }

 private:
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    std::ifstream in(path_);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }
  std::string path_;
  size_t mark_ = 0;
};

class ModuleExportsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
    engine.Reset();
    imsdk::AccountOptions me;
    me.nick = "我";
    imsdk::AccountOptions peer;
    peer.nick = "王工";
    ASSERT_TRUE(engine.CreateAccount("10001", me));
    ASSERT_TRUE(engine.CreateAccount("10002", peer));
    ASSERT_TRUE(engine.MakeFriends("10001", "10002"));
    module_ = std::make_unique<ModuleLibrary>(IM_MODULE_LIBRARY);
    ASSERT_TRUE(module_->ok()) << module_->error();
  }
  void TearDown() override {
    module_.reset();  // unload: TIMUninit, the window goes
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  bool SignIn() {
    if (!module_->login(u"10001", u"sig")) return false;
    return PumpUntil([] { return imsdk::EngineControl::Instance().SignedInAccount() == "10001"; });
  }

  std::unique_ptr<ModuleLibrary> module_;
  ImRect rect_{100, 80, 900, 700};
};

TEST_F(ModuleExportsTest, CreateWindowTwiceGivesOneThenZeroAndOneHiddenWindow) {
  EXPECT_EQ(module_->createWindow(nullptr, nullptr), 1);
  EXPECT_EQ(module_->createWindow(nullptr, nullptr), 0);
  EXPECT_EQ(CountChatWindows(), 1);
  ASSERT_NE(ChatWindow(), nullptr);
  EXPECT_FALSE(ChatWindow()->isVisible());
}

TEST_F(ModuleExportsTest, WindowExportsBeforeTheWindowExistsGiveZero) {
  EXPECT_EQ(module_->display(0, 0, &rect_), 0);
  EXPECT_EQ(module_->move(&rect_), 0);
  EXPECT_EQ(module_->hide(), 0);
  EXPECT_EQ(module_->entryShare(), 0);
  EXPECT_EQ(module_->exitShare(), 0);
  EXPECT_EQ(CountChatWindows(), 0);
}

TEST_F(ModuleExportsTest, OnAHiddenWindowMoveAndHideChangeNothingExitShareWorksEntryDoesNot) {
  ASSERT_EQ(module_->createWindow(nullptr, nullptr), 1);
  QRect before = ChatWindow()->geometry();
  EXPECT_EQ(module_->move(&rect_), 0);
  EXPECT_EQ(module_->hide(), 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(ChatWindow()->geometry(), before);
  EXPECT_FALSE(ChatWindow()->isVisible());
  EXPECT_EQ(module_->exitShare(), 1);
  EXPECT_EQ(module_->entryShare(), 0);
}

TEST_F(ModuleExportsTest, DisplayMovesAndShowsThenOnlyMovesMoveIsQueuedHideHides) {
  ASSERT_EQ(module_->createWindow(nullptr, nullptr), 1);
  EXPECT_EQ(module_->display(0, 0, &rect_), 1);
  QWidget* window = ChatWindow();
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(window->geometry(), QRect(100, 80, 800, 620));

  ImRect second{10, 20, 810, 640};
  EXPECT_EQ(module_->display(0, 0, &second), 1);
  EXPECT_EQ(window->geometry(), QRect(10, 20, 800, 620));

  ImRect third{50, 60, 850, 680};
  EXPECT_EQ(module_->move(&third), 1);
  // Queued: the window moves when its message arrives.
  EXPECT_EQ(window->geometry().topLeft(), QPoint(10, 20));
  EXPECT_TRUE(PumpUntil([&] { return window->geometry() == QRect(50, 60, 800, 620); }));

  EXPECT_EQ(module_->hide(), 1);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(module_->hide(), 0);
}

TEST_F(ModuleExportsTest, SharedSessionLayoutFollowsTheHost) {
  host::local::LocalHost host(std::string(std::getenv("IM_COMMON_DOCS_DIR")) + "/space");
  host.Install();
  SharedSessionInfo session;
  session.sessionKey = u"@TGS#group1";
  host.SetSharedSession(session);
  ASSERT_EQ(module_->createWindow(nullptr, nullptr), 1);
  ASSERT_EQ(module_->display(0, 0, &rect_), 1);
  QWidget* window = ChatWindow();
  for (const char* name : {"IMWnd_Col1", "IMWnd_Col2", "IMWnd_Col3", "IMWnd_Col4",
                           "IMWnd_SharedChatBtn", "ChatDrawBtn", "GroupFunctionBtn"}) {
    QWidget* control = window->findChild<QWidget*>(name);
    ASSERT_NE(control, nullptr) << name;
    EXPECT_TRUE(control->isHidden()) << name;
  }
  EXPECT_EQ(module_->exitShare(), 1);
  EXPECT_FALSE(window->findChild<QWidget*>("IMWnd_Col2")->isHidden());
  EXPECT_FALSE(window->findChild<QWidget*>("GroupFunctionBtn")->isHidden());
  // The host left the session: entering again changes nothing.
  host.ClearSharedSession();
  EXPECT_EQ(module_->entryShare(), 1);
  EXPECT_FALSE(window->findChild<QWidget*>("IMWnd_Col1")->isHidden());
  host.Uninstall();
}

TEST_F(ModuleExportsTest, LoginPreparesTheUsersFoldersAndCreatesTheWindowHidden) {
  ASSERT_TRUE(SignIn());
  std::string docs = std::getenv("IM_COMMON_DOCS_DIR");
  for (const char* folder : {"/Vantorel/log", "/Vantorel/cfg", "/Vantorel/10001/db",
                             "/Vantorel/10001/cache/face", "/Vantorel/10001/cache/recv"}) {
    EXPECT_TRUE(QDir(QString::fromStdString(docs + folder)).exists()) << folder;
  }
  ASSERT_EQ(CountChatWindows(), 1);
  EXPECT_FALSE(ChatWindow()->isVisible());
  EXPECT_EQ(module_->createWindow(nullptr, nullptr), 0);
}

TEST_F(ModuleExportsTest, SecondLoginIsRefusedWithoutCallingTheSdk) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  EXPECT_FALSE(module_->login(u"10001", u"sig"));
  EXPECT_FALSE(module_->login(u"10002", u"other"));
  EXPECT_EQ(log.Count("TIMLogin"), 1);
}

TEST_F(ModuleExportsTest, LogoutWithoutLoginCallsTheSdkAndLowersTheCounterBelowZero) {
  CallLog log;
  module_->logout();
  EXPECT_EQ(log.Count("TIMLogout"), 1);
  // The counter is -1: the sign-in is accepted and leaves it at 0, so a
  // second sign-in is not refused by the module but reaches the SDK.
  ASSERT_TRUE(SignIn());
  EXPECT_FALSE(module_->login(u"10001", u"sig"));
  EXPECT_EQ(log.Count("TIMLogin"), 2);
}

TEST_F(ModuleExportsTest, LoginAfterLogoutSignsInAgainWithoutStartingTheSdkAgain) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(module_->display(0, 0, &rect_), 1);
  module_->logout();
  EXPECT_FALSE(ChatWindow()->isVisible());
  EXPECT_TRUE(PumpUntil([] { return imsdk::EngineControl::Instance().SignedInAccount().empty(); }));
  ASSERT_TRUE(SignIn());
  EXPECT_EQ(log.Count("TIMInit"), 1);
  EXPECT_EQ(log.Count("TIMLogin"), 2);
}

TEST_F(ModuleExportsTest, KickedOfflineTellsTheUserAndHidesTheWindowFromTheSdkThread) {
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(module_->display(0, 0, &rect_), 1);
  QString boxText;
  // The box is modal: note its text and close it as the user would.
  QTimer watcher;
  QObject::connect(&watcher, &QTimer::timeout, [&] {
    if (QWidget* box = QApplication::activeModalWidget()) {
      if (auto* label = box->findChild<QLabel*>("ChatMessagebox_Msg")) boxText = label->text();
      box->close();
    }
  });
  watcher.start(20);
  ASSERT_TRUE(imsdk::EngineControl::Instance().KickSignedIn());
  EXPECT_TRUE(PumpUntil([&] { return !boxText.isEmpty() && !ChatWindow()->isVisible(); }));
  EXPECT_EQ(boxText, QStringLiteral("您的账号在其他设备登录!!!"));
  // Signed out: the next sign-in is not refused.
  ASSERT_TRUE(SignIn());
}

// Signed in, so the records layer has parsed on this thread: nothing it made
// may keep the library mapped.
TEST_F(ModuleExportsTest, UnloadUninitialisesTheSdkWithoutLogoutAndTakesTheWindowAway) {
  host::local::LocalHost host(std::string(std::getenv("IM_COMMON_DOCS_DIR")) + "/space");
  host.Install();
  CallLog log;
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(module_->display(0, 0, &rect_), 1);
  module_->Unload();
  EXPECT_EQ(log.Count("TIMUninit"), 1);
  EXPECT_EQ(log.Count("TIMLogout"), 0);
  EXPECT_EQ(CountChatWindows(), 0);
  // The host holds no callback into the unloaded code.
  EXPECT_FALSE(host.SendDrawingMsgThroughModule(u"{}"));
  host.Uninstall();
}

}  // namespace

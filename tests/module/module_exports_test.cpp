// The eight exports on the real library, loaded with dlopen as a host does.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLabel>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "host/local/local_host.h"
#include "imsdk/engine_control.h"
#include "module/module_library.h"

namespace {

using im_exports::ModuleLibrary;

bool PumpUntil(const std::function<bool()>& done) {
  QDeadlineTimer deadline(5000);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

QList<QWidget*> ChatWindows() {
  QList<QWidget*> all = QApplication::topLevelWidgets();
  all.removeIf([](QWidget* w) { return w->objectName() != QStringLiteral("CIMWnd"); });
  return all;
}

QWidget* ChatWindow() {
  return ChatWindows().value(0);
}

// Counts SDK calls logged after construction.
class CallLog {
 public:
  int Count(const std::string& function) const {
    std::ifstream in(std::getenv("IMSDK_CALL_LOG"));
    in.seekg(start_);
    int n = 0;
    for (std::string line; std::getline(in, line);) {
      n += line.find("\"call\":\"" + function + "\"") != std::string::npos;
    }
    return n;
  }

 private:
  std::streamoff start_ = std::max<std::streamoff>(
      0, std::ifstream(std::getenv("IMSDK_CALL_LOG"), std::ios::ate).tellg());
};

class ModuleExportsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
    engine.Reset();
    ASSERT_TRUE(engine.CreateAccount("10001", {}));
    ASSERT_TRUE(engine.CreateAccount("10002", {}));
    ASSERT_TRUE(engine.MakeFriends("10001", "10002"));
    module_ = std::make_unique<ModuleLibrary>(IM_MODULE_LIBRARY);
    ASSERT_TRUE(module_->ok()) << module_->error();
  }
  void TearDown() override {
    module_.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  bool SignIn() {
    if (!module_->login(u"10001", u"sig")) return false;
    return PumpUntil([] { return imsdk::EngineControl::Instance().SignedInAccount() == "10001"; });
  }

  std::unique_ptr<ModuleLibrary> module_;
  ImRect rect_{100, 80, 900, 700};
};

TEST_F(ModuleExportsTest, WithoutAWindowAllGiveZeroThenCreateGivesOneThenZero) {
  EXPECT_EQ(module_->display(0, 0, &rect_), 0);
  EXPECT_EQ(module_->move(&rect_), 0);
  EXPECT_EQ(module_->hide(), 0);
  EXPECT_EQ(module_->entryShare(), 0);
  EXPECT_EQ(module_->exitShare(), 0);
  EXPECT_TRUE(ChatWindows().empty());
  EXPECT_EQ(module_->createWindow(nullptr, nullptr), 1);
  EXPECT_EQ(module_->createWindow(nullptr, nullptr), 0);
  ASSERT_EQ(ChatWindows().size(), 1);
  EXPECT_FALSE(ChatWindow()->isVisible());
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
  auto hidden = [&](const char* name) { return window->findChild<QWidget*>(name)->isHidden(); };
  for (const char* name : {"IMWnd_Col1", "IMWnd_Col2", "IMWnd_Col3", "IMWnd_Col4",
                           "IMWnd_SharedChatBtn", "ChatDrawBtn", "GroupFunctionBtn"}) {
    ASSERT_NE(window->findChild<QWidget*>(name), nullptr) << name;
    EXPECT_TRUE(hidden(name)) << name;
  }
  EXPECT_EQ(module_->exitShare(), 1);
  EXPECT_FALSE(hidden("IMWnd_Col2"));
  EXPECT_FALSE(hidden("GroupFunctionBtn"));
  // The host left the session: entering again changes nothing.
  host.ClearSharedSession();
  EXPECT_EQ(module_->entryShare(), 1);
  EXPECT_FALSE(hidden("IMWnd_Col1"));
  host.Uninstall();
}

TEST_F(ModuleExportsTest, LoginPreparesFoldersCreatesTheWindowHiddenAndASecondIsRefused) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  std::string docs = std::getenv("IM_COMMON_DOCS_DIR");
  for (const char* folder : {"/Vantorel/log", "/Vantorel/cfg", "/Vantorel/10001/db",
                             "/Vantorel/10001/cache/face", "/Vantorel/10001/cache/recv"}) {
    EXPECT_TRUE(QDir(QString::fromStdString(docs + folder)).exists()) << folder;
  }
  ASSERT_EQ(ChatWindows().size(), 1);
  EXPECT_FALSE(ChatWindow()->isVisible());
  EXPECT_EQ(module_->createWindow(nullptr, nullptr), 0);
  EXPECT_FALSE(module_->login(u"10001", u"sig"));
  EXPECT_FALSE(module_->login(u"10002", u"other"));
  EXPECT_EQ(log.Count("TIMLogin"), 1);
}

TEST_F(ModuleExportsTest, LogoutWithoutLoginCallsTheSdkAndLowersTheCounterBelowZero) {
  CallLog log;
  module_->logout();
  EXPECT_EQ(log.Count("TIMLogout"), 1);
  // At -1 the sign-in leaves the counter at 0, so a second one reaches the SDK.
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
  QTimer closer;  // the box is modal: note its text and close it as the user would
  QObject::connect(&closer, &QTimer::timeout, [&] {
    if (QWidget* box = QApplication::activeModalWidget()) {
      if (auto* label = box->findChild<QLabel*>("ChatMessagebox_Msg")) boxText = label->text();
      box->close();
    }
  });
  closer.start(20);
  ASSERT_TRUE(imsdk::EngineControl::Instance().KickSignedIn());
  EXPECT_TRUE(PumpUntil([&] { return !boxText.isEmpty() && !ChatWindow()->isVisible(); }));
  EXPECT_EQ(boxText, QStringLiteral("您的账号在其他设备登录!!!"));
  ASSERT_TRUE(SignIn());  // signed out, so not refused
}

// After a sign-in nothing the library made may keep it mapped.
TEST_F(ModuleExportsTest, UnloadUninitialisesTheSdkWithoutLogoutAndTakesTheWindowAway) {
  host::local::LocalHost host(std::string(std::getenv("IM_COMMON_DOCS_DIR")) + "/space");
  host.Install();
  CallLog log;
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(module_->display(0, 0, &rect_), 1);
  module_->Unload();
  EXPECT_EQ(log.Count("TIMUninit"), 1);
  EXPECT_EQ(log.Count("TIMLogout"), 0);
  EXPECT_TRUE(ChatWindows().empty());
  EXPECT_FALSE(host.SendDrawingMsgThroughModule(u"{}"));  // no callback into unloaded code
  host.Uninstall();
}

}  // namespace

// The two drawing dialogs against fake sources: the selection dialog stays
// behind its wait window until the upload reports with 1025, and the
// share-tree dialog shows the host's tree, hands it back, and reports the
// drawing chosen for a shared chat.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <functional>

#include "host/local/local_host.h"
#include "tests/ui/test_window.h"
#include "ui/dialogs/drawing_selection.h"
#include "ui/dialogs/share_dwg.h"

namespace {

using service::drawings::DrawingSendStep;

QWidget* Shown(const char* className) {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == className && w->isVisible()) return w;
  }
  return nullptr;
}

void Click(QWidget* window, const char* name) {
  auto* button = window->findChild<QAbstractButton*>(name);
  ASSERT_NE(button, nullptr) << name;
  QTest::mouseClick(button, Qt::LeftButton);
}

int Rows(QWidget* window, const char* list) {
  auto* view = window->findChild<QAbstractItemView*>(list);
  return view && view->model() ? view->model()->rowCount() : -1;
}

// Runs `dialog` modally while `act` works on its window; a watchdog hides it.
int RunDialog(ui::DialogFrame& dialog, const char* className,
              const std::function<void(QWidget*)>& act) {
  std::function<void()> poll = [&] {
    QWidget* window = Shown(className);
    if (window == nullptr) return QTimer::singleShot(1, poll);
    act(window);
  };
  QTimer::singleShot(0, poll);
  QObject guard;
  QTimer::singleShot(5000, &guard, [className] {
    if (QWidget* window = Shown(className)) window->hide();
  });
  return dialog.RunModal(nullptr);
}

class FakeSelection final : public service::drawings::DrawingSelectionSource {
 public:
  std::vector<WString> HostDrawings() override {
    return {u"/host/一层平面图.dwg", u"/host/site.dxf"};
  }
  DrawingSendStep Send(const WString& path, platform::WindowHandle notify) override {
    sent.push_back(path);
    this->notify = notify;
    return step;
  }
  bool Finish(bool stored) override {
    finished.push_back(stored);
    return stored;
  }
  DrawingSendStep step = DrawingSendStep::kUploading;
  std::vector<WString> sent;
  std::vector<bool> finished;
  platform::WindowHandle notify = platform::WindowHandle::kNone;
};

TEST(DrawingSelectionTest, UploadKeepsTheDialogBehindTheWaitWindowUntil1025) {
  FakeSelection source;
  CDrawingSelection dialog(source);
  bool waited = false, heldOnCancel = false;
  platform::WindowHandle dialogHandle = platform::WindowHandle::kNone;
  const int code = RunDialog(dialog, "CDrawingSelectionWindow", [&](QWidget* window) {
    EXPECT_EQ(Rows(window, "DrawingSelection_List"), 2);
    dialogHandle = dialog.GetHWND();
    Click(window, "DrawingSelection_SendBtn");  // the last drawing added is chosen
    waited = Shown("CWaitWnd") != nullptr;
    Click(window, "DrawingSelection_CancelBtn");  // disabled while uploading
    window->close();                              // refused while uploading
    QTest::qWait(20);
    heldOnCancel = Shown("CDrawingSelectionWindow") != nullptr;
    platform::PostMessage(source.notify, platform::msg::kUploadFinished, 1, 0);
  });
  EXPECT_EQ(code, 1);
  EXPECT_EQ(source.sent, std::vector<WString>{u"/host/site.dxf"});
  EXPECT_EQ(source.notify, dialogHandle);
  EXPECT_TRUE(waited);
  EXPECT_TRUE(heldOnCancel);
  EXPECT_EQ(source.finished, std::vector<bool>{true});
  QTest::qWait(20);
  EXPECT_EQ(Shown("CWaitWnd"), nullptr);
}

TEST(DrawingSelectionTest, RefusedSendIsToldAndTheDialogStays) {
  FakeSelection source;
  source.step = DrawingSendStep::kNoSpace;
  CDrawingSelection dialog(source);
  QString tips;
  RunDialog(dialog, "CDrawingSelectionWindow", [&](QWidget* window) {
    Click(window, "DrawingSelection_SendBtn");
    tips = window->findChild<QLabel*>("DrawingSelection_Tips")->text();
    EXPECT_EQ(Shown("CWaitWnd"), nullptr);
    Click(window, "DrawingSelection_closebtn");
  });
  EXPECT_EQ(tips, QStringLiteral("无法连接群空间，图纸没有发送。"));
  EXPECT_TRUE(source.finished.empty());
}

class FakeTree final : public service::drawings::ShareTreeSource {
 public:
  WString GroupName() const override { return u"图纸评审组"; }
  bool FillTree(ShareTreeSelection& tree) override {
    tree.cloudGroupId = 1001;
    tree.drawings = {{7, 0, u"一层平面图.dwg", u"1001/7", 2048},
                     {8, 0, u"site.dxf", u"1001/8", 10}};
    return true;
  }
  bool Share(const ShareTreeDrawing& drawing) override {
    shared.push_back(drawing.drawingRef);
    return true;
  }
  std::vector<WString> shared;
};

TEST(ShareDwgTest, SharesOrChoosesADrawingAndHandsTheTreeBack) {
  host::local::LocalHost host(testing::TempDir() + "share_dwg_space");
  host.Install();
  FakeTree source;
  {
    ShareDwg dialog(source, false);
    EXPECT_EQ(RunDialog(dialog, "ShareDwgWindow",
                        [&](QWidget* window) {
                          EXPECT_EQ(Rows(window, "ShareDwg_List"), 2);
                          Click(window, "ShareDwg_SendBtn");
                        }),
              ShareDwg::kShared);
    EXPECT_EQ(source.shared, std::vector<WString>{u"1001/7"});
  }
  {
    ShareDwg dialog(source, true);
    bool sendOffered = true;
    EXPECT_EQ(RunDialog(dialog, "ShareDwgWindow",
                        [&](QWidget* window) {
                          sendOffered =
                              window->findChild<QWidget*>("ShareDwg_SendBtn")->isVisible();
                          Click(window, "ShareDwg_SharedChatBtn");
                        }),
              ShareDwg::kSharedChat);
    EXPECT_FALSE(sendOffered);
    ASSERT_TRUE(dialog.Chosen());
    EXPECT_EQ(dialog.Chosen()->drawingId, 7);
  }
  std::vector<std::string> names = host.CallNames();
  EXPECT_EQ(std::count(names.begin(), names.end(), "ReleaseShareTree"), 2);
  host.Uninstall();
}

}  // namespace

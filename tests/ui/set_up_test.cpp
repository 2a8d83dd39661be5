// The settings dialog: where it opens, what it shows, and that a chosen
// download folder holds whichever button closes the dialog.
#include "ui/dialogs/set_up.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "tests/ui/test_window.h"

namespace {

using platform::W;

class MemorySettings final : public platform::SettingsStore {
 public:
  std::optional<WString> ReadString(const WString&, const WString& name) const override {
    auto it = values.find(name);
    return it == values.end() ? std::nullopt : std::optional<WString>(it->second);
  }
  bool WriteString(const WString&, const WString& name, const WString& value) override {
    if (failWrites) return false;
    values[name] = value;
    return true;
  }
  std::map<WString, WString> values;
  bool failWrites = false;
};

QWidget* OpenSetUp() {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == "SetUpWindow" && w->isVisible()) return w;
  }
  return nullptr;
}

void Click(QWidget* window, const char* name) {
  auto* button = window->findChild<QAbstractButton*>(name);
  ASSERT_NE(button, nullptr) << name;
  QTest::mouseClick(button, Qt::LeftButton);
}

class SetUpTest : public testing::Test {
 protected:
  void SetUp() override { folders_.SetDownloadPath(W("/home/张明/下载")); }

  // Runs the dialog modally; `act` works on it, a watchdog ends it.
  int Run(const std::function<void(QWidget*)>& act, ui::FolderBrowser browse = {}) {
    CSetUp dialog(
        folders_, browse ? browse : [this] {
          ++browsed_;
          return chosen_;
        });
    dialog.SetAnchor(ui::Point{400, 500});
    std::function<void()> poll = [&] {
      QWidget* window = OpenSetUp();
      if (window == nullptr) return QTimer::singleShot(1, poll);
      act(window);
    };
    QTimer::singleShot(0, poll);
    QObject guard;
    QTimer::singleShot(5000, &guard, [] {
      if (QWidget* window = OpenSetUp()) window->hide();
    });
    return dialog.RunModal(nullptr);
  }
  std::string Label(QWidget* window) {
    return window->findChild<QLineEdit*>("SetUp_DownloadPathLabel")->text().toStdString();
  }

  MemorySettings settings_;
  platform::DataFolders folders_{settings_};
  WString chosen_ = W("/data/图纸");
  int browsed_ = 0;
};

TEST_F(SetUpTest, OpensBesideTheButtonBottomAlignedShowingTheFolder) {
  QRect frame;
  std::string label;
  QString tooltip;
  Run([&](QWidget* window) {
    frame = window->frameGeometry();
    label = Label(window);
    tooltip = window->findChild<QLineEdit*>("SetUp_DownloadPathLabel")->toolTip();
    Click(window, "SetUp_Closebtn");
  });
  EXPECT_EQ(frame.left(), 400);
  EXPECT_EQ(frame.top() + frame.height(), 500);
  EXPECT_EQ(label, "/home/张明/下载");
  EXPECT_EQ(tooltip, QString::fromUtf8("/home/张明/下载"));
}

TEST_F(SetUpTest, ChosenFolderHoldsAndIsStoredWhicheverButtonCloses) {
  for (const char* closer : {"SetUp_CancelBtn", "SetUp_ConfirmBtn", "SetUp_Closebtn"}) {
    settings_.values.clear();
    folders_.SetDownloadPath(W("/home/张明/下载"));
    std::string shown;
    int code = Run([&](QWidget* window) {
      Click(window, "SetUp_SelectDownloadPathBtn");
      shown = Label(window);
      Click(window, closer);
    });
    EXPECT_EQ(code, 1) << closer;
    EXPECT_EQ(shown, "/data/图纸") << closer;
    EXPECT_EQ(folders_.GetDownloadPath(), chosen_) << closer;
    EXPECT_EQ(settings_.values[platform::kDownloadPathValue], chosen_) << closer;
  }
}

TEST_F(SetUpTest, CancelledBrowserChangesAndStoresNothing) {
  chosen_.clear();
  Run([&](QWidget* window) {
    Click(window, "SetUp_SelectDownloadPathBtn");
    Click(window, "SetUp_CancelBtn");
  });
  EXPECT_EQ(browsed_, 1);
  EXPECT_EQ(folders_.GetDownloadPath(), W("/home/张明/下载"));
  EXPECT_TRUE(settings_.values.empty());
}

// A folder that cannot be stored still holds for this run.
TEST_F(SetUpTest, FailedStoreKeepsTheFolderForThisRun) {
  settings_.failWrites = true;
  Run([&](QWidget* window) {
    Click(window, "SetUp_SelectDownloadPathBtn");
    Click(window, "SetUp_ConfirmBtn");
  });
  EXPECT_EQ(folders_.GetDownloadPath(), chosen_);
}

}  // namespace

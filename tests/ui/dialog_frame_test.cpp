// The dialog frame and the two small dialogs on it: the add menu and the
// wait window.
#include "ui/dialogs/dialog_frame.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QWidget>

#include "host/local/local_host.h"
#include "tests/ui/test_window.h"
#include "ui/dialogs/add_friend_menu.h"
#include "ui/dialogs/dialog_rows.h"
#include "ui/dialogs/wait_wnd.h"
#include "ui/kit/qt/im_animation.h"

namespace {

using platform::W;
using ui::test::PumpUntil;

QWidget* TopLevelNamed(const QString& className) {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == className && w->isVisible()) return w;
  }
  return nullptr;
}

// A dialog on the kit's test skin with any row; counts its deletions.
class ProbeDialog : public ui::DialogFrame {
 public:
  explicit ProbeDialog(const ui::DialogRow& row) : DialogFrame(row) {}
  ~ProbeDialog() override { ++deleted; }
  static inline int deleted = 0;
  ShareTreeSelection selection;

 protected:
  std::string GetSkinFolder() const override { return "tests\\ui\\skins\\"; }
  ShareTreeSelection* ShareTree() override { return &selection; }
};

ui::DialogRow ProbeRow(ui::FinalMessage final, ui::KillFocus killFocus,
                       const char* skin = "KitTest.xml") {
  return ui::DialogRow{"ProbeDialog", skin, u"探针", final, killFocus};
}

class DialogFrameTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(owner_.Create(nullptr, W("owner"), ui::WindowStyle::kTopLevel));
    owner_.MoveWindow(ui::Rect{100, 80, 900, 680});
    owner_.ShowWindow(true);
    ProbeDialog::deleted = 0;
  }
  // The user clicks the owner: the dialog loses the focus.
  void ClickOwner() {
    QWidget* owner = TopLevelNamed("RecordingWindow");
    ASSERT_NE(owner, nullptr);
    owner->activateWindow();
    QApplication::processEvents();
  }
  size_t Received(unsigned msg) const {
    size_t n = 0;
    for (const auto& m : owner_.messages) n += m.msg == msg;
    return n;
  }

  ui::test::RecordingWindow owner_{"KitTest.xml"};
};

TEST_F(DialogFrameTest, PopupToolWindowOwnedByTheOpenerCentredAndNamed) {
  ui::DialogRow row = ProbeRow(ui::FinalMessage::kKeep, ui::KillFocus::kBase);
  ProbeDialog dialog(row);
  ASSERT_TRUE(dialog.ShowDialog(&owner_));
  QWidget* window = TopLevelNamed("ProbeDialog");
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->windowTitle(), QString::fromUtf8("探针"));
  EXPECT_TRUE(window->windowFlags().testFlag(Qt::Tool));
  EXPECT_EQ(window->parentWidget(), TopLevelNamed("RecordingWindow"));
  EXPECT_TRUE(PumpUntil([&] { return window->isActiveWindow(); }));
  ui::Rect o = owner_.GetWindowRect();
  ui::Rect d = dialog.GetWindowRect();
  EXPECT_NEAR(d.left + d.Width() / 2, (o.left + o.right) / 2, 1);
  EXPECT_NEAR(d.top + d.Height() / 2, (o.top + o.bottom) / 2, 1);
}

struct KillFocusCase {
  ui::KillFocus killFocus;
  bool closes;
};

TEST_F(DialogFrameTest, LosingTheFocusClosesOnlyTheClosingVariants) {
  for (KillFocusCase c :
       {KillFocusCase{ui::KillFocus::kBase, false}, KillFocusCase{ui::KillFocus::kIgnore, false},
        KillFocusCase{ui::KillFocus::kClose, true},
        KillFocusCase{ui::KillFocus::kCloseThenBase, true}}) {
    ui::DialogRow row = ProbeRow(ui::FinalMessage::kKeep, c.killFocus);
    ProbeDialog dialog(row);
    ASSERT_TRUE(dialog.ShowDialog(&owner_));
    ClickOwner();
    ui::test::Pump(30);
    EXPECT_EQ(dialog.IsCreated(), !c.closes) << static_cast<int>(c.killFocus);
    dialog.Close();
    PumpUntil([&] { return !dialog.IsCreated(); });
  }
}

TEST_F(DialogFrameTest, SelfDeletingDialogGoesWithItsWindowItsOwnerOrAFailedStart) {
  ui::DialogRow row = ProbeRow(ui::FinalMessage::kSelfDelete, ui::KillFocus::kBase);
  auto* closed = new ProbeDialog(row);
  ASSERT_TRUE(closed->ShowDialog(&owner_));
  closed->Close();
  EXPECT_TRUE(PumpUntil([] { return ProbeDialog::deleted == 1; }));

  // The owner goes first: the dialog's window goes with it, and so does the object.
  auto* owner = new ui::test::RecordingWindow("KitTest.xml");
  ASSERT_TRUE(owner->Create(nullptr, W("owner2"), ui::WindowStyle::kTopLevel));
  ASSERT_TRUE((new ProbeDialog(row))->ShowDialog(owner));
  owner->Close();
  EXPECT_TRUE(PumpUntil([] { return ProbeDialog::deleted == 2; }));
  delete owner;

  ui::DialogRow missing = ProbeRow(ui::FinalMessage::kSelfDelete, ui::KillFocus::kBase, "No.xml");
  EXPECT_FALSE((new ProbeDialog(missing))->ShowDialog(&owner_));
  EXPECT_EQ(ProbeDialog::deleted, 3);
}

TEST_F(DialogFrameTest, ShareTreeDialogHandsItsSelectionBackToTheHostOnce) {
  host::local::LocalHost host(testing::TempDir() + "/share-tree-space");
  host.Install();
  ui::DialogRow row = ProbeRow(ui::FinalMessage::kReleaseShareTree, ui::KillFocus::kBase);
  {
    ProbeDialog dialog(row);
    ASSERT_TRUE(dialog.ShowDialog(&owner_));
    EXPECT_TRUE(host.CallNames().empty());
    dialog.Close();
    PumpUntil([&] { return !dialog.IsCreated(); });
  }
  EXPECT_EQ(host.CallNames(), std::vector<std::string>{"ReleaseShareTree"});
  EXPECT_EQ(ProbeDialog::deleted, 1);  // by its owner, not by itself
}

struct MenuItemCase {
  const char* item;
  const char* renamedTo;  // the name the item is given first (empty: none)
  unsigned expected;
};

TEST_F(DialogFrameTest, MenuItemsAskTheOwnerAndCloseWhateverTheCaseOfTheirNames) {
  for (MenuItemCase c :
       {MenuItemCase{"Elem_Menu_AddFriend", "", platform::msg::kOpenAddFriend},
        MenuItemCase{"Elem_Menu_CreateGroup", "", platform::msg::kOpenCreateGroup},
        MenuItemCase{"Elem_Menu_AddFriend", "elem_menu_addfriend", platform::msg::kOpenAddFriend},
        MenuItemCase{"Elem_Menu_CreateGroup", "ELEM_MENU_CREATEGROUP",
                     platform::msg::kOpenCreateGroup}}) {
    owner_.messages.clear();
    ASSERT_NE(CAddFriendMenu::Open(&owner_, ui::Point{300, 200}), nullptr);
    QWidget* menu = TopLevelNamed("CAddFriendMenu ");
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->windowTitle(), QStringLiteral("CEditMenu"));
    EXPECT_EQ(menu->frameGeometry().topLeft(), QPoint(300, 200));
    auto* item = menu->findChild<QWidget*>(c.item);
    ASSERT_NE(item, nullptr);
    if (*c.renamedTo) item->setObjectName(c.renamedTo);
    QTest::mouseClick(item, Qt::LeftButton);
    EXPECT_TRUE(PumpUntil([&] { return Received(c.expected) == 1; })) << c.item;
    EXPECT_TRUE(PumpUntil([] { return TopLevelNamed("CAddFriendMenu ") == nullptr; }));
  }
}

TEST_F(DialogFrameTest, ClickingOutsideTheMenuClosesItAndAsksForNothing) {
  ASSERT_NE(CAddFriendMenu::Open(&owner_, ui::Point{300, 200}), nullptr);
  ClickOwner();
  EXPECT_TRUE(PumpUntil([] { return TopLevelNamed("CAddFriendMenu ") == nullptr; }));
  ui::test::Pump(20);
  EXPECT_EQ(Received(platform::msg::kOpenAddFriend), 0u);
  EXPECT_EQ(Received(platform::msg::kOpenCreateGroup), 0u);
}

TEST_F(DialogFrameTest, WaitWindowAnimatesCentredUntilItsOwnerClosesIt) {
  CWaitWnd* wait = CWaitWnd::Open(&owner_);
  ASSERT_NE(wait, nullptr);
  QWidget* window = TopLevelNamed("CWaitWnd");
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->windowTitle(), QStringLiteral("CWaitWindow"));
  auto* animation = window->findChild<ui::qt::ImAnimation*>("WaitWnd_Animation");
  ASSERT_NE(animation, nullptr);
  EXPECT_TRUE(animation->isPlaying());
  ClickOwner();  // a click elsewhere leaves it alone
  ui::test::Pump(20);
  ASSERT_NE(TopLevelNamed("CWaitWnd"), nullptr);
  wait->Close();
  EXPECT_TRUE(PumpUntil([] { return TopLevelNamed("CWaitWnd") == nullptr; }));
}

// People who cannot see the screen find every control of the dialogs by name.
TEST_F(DialogFrameTest, EveryNamedControlOfTheDialogSkinsHasAnAccessibleName) {
  for (const ui::DialogRow& row :
       {ui::dialogs::kAddFriendMenu, ui::dialogs::kWaitWnd, ui::dialogs::kAddFriendWnd,
        ui::dialogs::kChatMessageBox, ui::dialogs::kSetUp}) {
    ui::DialogRow keep = row;
    keep.finalMessage = ui::FinalMessage::kKeep;
    ui::DialogFrame dialog(keep);
    ASSERT_TRUE(dialog.CreateDialog(&owner_)) << row.skinFile;
    dialog.ShowWindow(true);
    QWidget* window = TopLevelNamed(row.className);
    ASSERT_NE(window, nullptr) << row.skinFile;
    for (QWidget* w : window->findChildren<QWidget*>()) {
      if (w->objectName().isEmpty() || w->objectName().startsWith("qt_")) continue;
      if (w->parentWidget() == window) continue;  // the kit's own holders
      // A label that shows what the dialog puts in it is read by its text.
      auto* label = qobject_cast<QLabel*>(w);
      if (label && label->pixmap().isNull() && label->accessibleName().isEmpty()) continue;
      QAccessibleInterface* a = QAccessible::queryAccessibleInterface(w);
      ASSERT_NE(a, nullptr);
      EXPECT_FALSE(a->text(QAccessible::Name).isEmpty())
          << row.skinFile << ": " << w->objectName().toStdString();
    }
    dialog.Close();
    PumpUntil([&] { return !dialog.IsCreated(); });
  }
}

}  // namespace

// The kit's long list (rows as data, drawn by one template) and popup menus.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QListView>
#include <QMenu>
#include <QTest>

#include "tests/ui/test_window.h"
#include "ui/kit/popup_menu.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/row_list.h"

namespace ui::test {
namespace {

class RowListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(window.Create(nullptr, u"rows", WindowStyle::kTopLevel));
    window.ShowWindow(true);
    rows = RowList(window.FindControl("Kit_Rows"));
    ASSERT_TRUE(rows);
    ASSERT_TRUE(rows.SetTemplate("KitItem.xml", 40));
    rows.SetNameControl("Kit_ItemName");
  }
  auto* View() { return static_cast<QListView*>(qt::WidgetOf(rows.control())); }

  RecordingWindow window{"KitTest.xml"};
  RowList rows;
};

TEST_F(RowListTest, RowsAreFoundByUserDataAfterEveryKindOfChange) {
  EXPECT_FALSE(RowList(window.FindControl("Kit_List")));  // a widget list is not a row list
  {
    RowList::Batch batch(rows);
    for (const char16_t* id : {u"a", u"b", u"c"}) rows.SetText(rows.Add(id), "Kit_ItemName", id);
  }
  rows.Add(u"front", 0);
  rows.Add(u"b", 2);  // a duplicate: the first one stays the one found
  EXPECT_EQ(rows.Count(), 5);
  for (auto [id, row] : {std::pair{u"front", 0}, {u"a", 1}, {u"b", 2}, {u"c", 4}}) {
    EXPECT_EQ(rows.Find(id), row) << platform::Utf16ToUtf8(id);
  }
  EXPECT_EQ(rows.Get(3, "Kit_ItemName", "text"), u"b");  // values stay with their row
  EXPECT_TRUE(rows.Remove(2));
  EXPECT_EQ(rows.Find(u"b"), 2);
  EXPECT_EQ(rows.Find(u"c"), 3);
  EXPECT_FALSE(rows.Remove(9));
  EXPECT_EQ(View()->model()->index(1, 0).data(Qt::AccessibleTextRole).toString(), "a");
  rows.RemoveAll();
  EXPECT_EQ(rows.Find(u"a"), -1);
  EXPECT_EQ(rows.Count(), 0);
}

TEST_F(RowListTest, AClickIsAButtonClickOrAnItemClickBoundToTheRowUnderTheMouse) {
  for (const char16_t* id : {u"r0", u"r1"}) rows.Set(rows.Add(id), "Kit_ItemBtn", "userdata", id);
  QCoreApplication::processEvents();
  int clickedRow = -1;
  WString userData;
  window.onNotify = [&](TNotifyUI& msg) {
    clickedRow = rows.RowOf(msg.pSender);
    userData = msg.pSender.GetUserData();
  };
  QRect second = View()->visualRect(View()->model()->index(1, 0));
  QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, second.topLeft() + QPoint(5, 20));
  EXPECT_EQ(window.Count("itemclick", "Kit_Item"), 1u);
  EXPECT_EQ(clickedRow, 1);
  EXPECT_EQ(userData, u"r1");  // the row's own user data on the template's root
  QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, second.topRight() + QPoint(-20, 20));
  EXPECT_EQ(window.Count("click", "Kit_ItemBtn"), 1u);
  EXPECT_EQ(userData, u"r1");
  Rect list = rows.control().GetPos();
  Control at = window.FindControlAt(Point{list.left + 30, list.top + second.top() + 20});
  EXPECT_EQ(at.GetName(), "Kit_ItemName");
  EXPECT_TRUE(at.IsInside(rows.control()));
  EXPECT_EQ(rows.RowOf(at), 1);
}

TEST_F(RowListTest, AFillerMakesARowOnceWhenItIsFirstDrawnReadOrChanged) {
  std::vector<WString> made;
  rows.SetFiller([&](int row) {
    WString id = rows.UserData(row);
    made.push_back(id);
    rows.SetText(row, "Kit_ItemName", u"name " + id);
  });
  {
    RowList::Batch batch(rows);
    for (int i = 0; i < 200; ++i) rows.Add(u"r" + platform::Utf8ToUtf16(std::to_string(i)));
  }
  auto timesMade = [&](const WString& id) { return std::count(made.begin(), made.end(), id); };
  QCoreApplication::processEvents();  // laid out and painted
  EXPECT_EQ(timesMade(u"r0"), 1);
  EXPECT_LT(made.size(), 50u);  // the rows in view, not all of them
  EXPECT_EQ(rows.Find(u"r180"), 180);
  EXPECT_EQ(timesMade(u"r180"), 0);  // finding needs no values

  EXPECT_EQ(rows.Get(150, "Kit_ItemName", "text"), u"name r150");
  EXPECT_EQ(View()->model()->index(120, 0).data(Qt::AccessibleTextRole).toString(), "name r120");
  rows.SetText(199, "Kit_ItemName", u"renamed");  // made first, then changed
  EXPECT_EQ(rows.Get(199, "Kit_ItemName", "text"), u"renamed");
  View()->viewport()->repaint();
  for (const char16_t* id : {u"r0", u"r150", u"r120", u"r199"}) {
    EXPECT_EQ(timesMade(id), 1) << platform::Utf16ToUtf8(id);
  }

  rows.RemoveAll();
  rows.Add(u"r0");  // a new row is made anew
  EXPECT_EQ(rows.Get(0, "Kit_ItemName", "text"), u"name r0");
  EXPECT_EQ(timesMade(u"r0"), 2);
}

TEST_F(RowListTest, APopupMenuSendsTheChosenCommandAndAnUntrackedOneShowsNothing) {
  {
    PopupMenu never;
    never.AppendItem(1, u"不显示");
  }
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  PopupMenu menu;
  menu.AppendItem(3170, u"发送消息");
  menu.AppendItem(3171, u"删除好友");
  ASSERT_TRUE(menu.Track(window.ClientToScreen(Point{10, 10}), window));
  auto* shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(shown, nullptr);
  ASSERT_EQ(shown->actions().size(), 2);
  EXPECT_EQ(shown->actions()[0]->text(), QStringLiteral("发送消息"));
  shown->actions()[1]->trigger();
  shown->close();
  EXPECT_TRUE(PumpUntil([&] {
    for (const auto& m : window.messages) {
      if (m.msg == kWmCommand && m.wParam == 3171) return true;
    }
    return false;
  }));
}

}  // namespace
}  // namespace ui::test

// Controls: notifications they send, attributes, lists and tab layouts.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QTest>

#include "platform/trace.h"
#include "tests/ui/test_window.h"
#include "ui/kit/qt/control_ref.h"

namespace ui::test {
namespace {

using platform::W;

class ControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(window.Create(nullptr, W("kit"), WindowStyle::kTopLevel));
    window.ShowWindow(true);
    QWidget* frame = Widget("KitTest")->window();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame));
    window.notes.clear();
  }
  QWidget* Widget(const char* name) { return qt::WidgetOf(window.FindControl(name)); }

  RecordingWindow window{"KitTest.xml"};
};

TEST_F(ControlTest, ClicksAndSelectionsNotifyProgramChangesOnlyWhenAsked) {
  QTest::mouseClick(Widget("Kit_Button"), Qt::LeftButton);
  EXPECT_EQ(window.Count("click", "Kit_Button"), 1u);
  QTest::mouseClick(Widget("Kit_OptionB"), Qt::LeftButton);
  EXPECT_EQ(window.Count("click", "Kit_OptionB"), 1u);
  EXPECT_EQ(window.Count("selectchanged", "Kit_OptionB"), 1u);
  EXPECT_EQ(window.Count("selectchanged", "Kit_OptionA"), 1u);  // lost the selection
  Control a = window.FindControl("Kit_OptionA");
  Control b = window.FindControl("Kit_OptionB");
  EXPECT_TRUE(b.IsSelected());
  EXPECT_FALSE(a.IsSelected());
  window.notes.clear();
  b.Selected(false, false);  // quiet, and may leave an exclusive group empty
  EXPECT_FALSE(a.IsSelected());
  EXPECT_FALSE(b.IsSelected());
  EXPECT_TRUE(window.notes.empty());
  a.Selected(true, true);
  EXPECT_TRUE(a.IsSelected());
  EXPECT_EQ(window.Count("selectchanged", "Kit_OptionA"), 1u);
  EXPECT_EQ(window.Count("click"), 0u);
}

TEST_F(ControlTest, KeysReachTheWindowFirstThenTheControlWhichNotifies) {
  window.onMessage = [](unsigned msg, WPARAM key, LPARAM mods) -> LRESULT {
    return msg == kWmKeyDown && key == 'V' && (mods & kKeyCtrl) ? 1 : 0;  // swallows pasting
  };
  Control edit = window.FindControl("Kit_Edit");
  Control rich = window.FindControl("Kit_Rich");
  edit.SetText(W("预设"));
  rich.SetText(W("预设"));
  EXPECT_EQ(window.Count("textchanged"), 0u);  // only typing notifies
  edit.SetFocus();
  QTest::keyClicks(Widget("Kit_Edit"), "ab");
  EXPECT_EQ(window.Count("textchanged", "Kit_Edit"), 2u);
  EXPECT_EQ(edit.GetText(), W("预设ab"));
  QTest::keyClick(Widget("Kit_Edit"), Qt::Key_Return);
  EXPECT_EQ(window.Count("return", "Kit_Edit"), 1u);
  rich.SetFocus();
  EXPECT_EQ(window.Count("setfocus", "Kit_Edit"), 1u);
  EXPECT_EQ(window.Count("killfocus", "Kit_Edit"), 1u);
  EXPECT_EQ(window.Count("setfocus", "Kit_Rich"), 1u);
  // In the rich edit Return sends, Shift+Return breaks the line.
  QApplication::clipboard()->setText("pasted");
  rich.SetText(W(""));
  QTest::keyClicks(Widget("Kit_Rich"), "hi");
  QTest::keyClick(Widget("Kit_Rich"), Qt::Key_Return, Qt::ShiftModifier);
  QTest::keyClick(Widget("Kit_Rich"), Qt::Key_V, Qt::ControlModifier);
  QTest::keyClicks(Widget("Kit_Rich"), "yo");
  EXPECT_EQ(window.Count("return", "Kit_Rich"), 0u);
  EXPECT_EQ(rich.GetText(), W("hi\nyo"));
  QTest::keyClick(Widget("Kit_Rich"), Qt::Key_Enter);
  EXPECT_EQ(window.Count("return", "Kit_Rich"), 1u);
  EXPECT_EQ(rich.GetText(), W("hi\nyo"));  // nothing inserted
}

TEST_F(ControlTest, RightClickNotifiesOnceWithTheControlAndPoint) {
  Point point;
  window.onNotify = [&](TNotifyUI& msg) {
    if (msg.sType == kNotifyRButtonUp) point = msg.ptMouse;
  };
  QWidget* label = Widget("Kit_Label");
  QTest::mouseClick(label, Qt::RightButton, Qt::NoModifier, QPoint(5, 6));
  EXPECT_EQ(window.Count("rbuttonup"), 1u);
  EXPECT_EQ(window.Count("rbuttonup", "Kit_Label"), 1u);
  Rect pos = window.FindControl("Kit_Label").GetPos();
  EXPECT_EQ(point.x, pos.left + 5);
  EXPECT_EQ(point.y, pos.top + 6);
  EXPECT_EQ(window.FindControlAt(point), window.FindControl("Kit_Label"));
  QTest::mouseDClick(label, Qt::LeftButton, Qt::NoModifier, QPoint(3, 4));
  size_t dbl = 0;
  for (const auto& m : window.messages) dbl += m.msg == kWmLButtonDblClk;
  EXPECT_EQ(dbl, 1u);
}

TEST_F(ControlTest, ListItemsFromTemplates) {
  Control list = window.FindControl("Kit_List");
  std::vector<Control> items;
  for (int i = 0; i < 3; ++i) {
    items.push_back(window.CreateFromSkin("KitItem.xml"));
    ASSERT_TRUE(items[i]);
    items[i].SetUserData(W("id" + std::to_string(i)));
    items[i].SetName("item" + std::to_string(i));
  }
  EXPECT_FALSE(window.FindControl("item0"));  // not in the window until added
  EXPECT_TRUE(list.Add(items[0]));
  EXPECT_TRUE(list.Add(items[2]));
  EXPECT_TRUE(list.AddAt(items[1], 1));
  ASSERT_EQ(list.GetCount(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.GetItemAt(i).GetUserData(), items[i].GetUserData());
  EXPECT_EQ(list.GetItemIndex(items[2]), 2);
  EXPECT_EQ(items[1].FindSubControl("Kit_ItemName").GetParent(), items[1]);
  EXPECT_FALSE(window.FindControl("Kit_Button").Add(items[0]));  // not a list

  WString clicked;
  window.onNotify = [&](TNotifyUI& msg) {
    if (msg.sType == kNotifyItemClick) clicked = msg.pSender.GetUserData();
  };
  QCoreApplication::processEvents();
  QTest::mouseClick(qt::WidgetOf(items[1].FindSubControl("Kit_ItemName")), Qt::LeftButton);
  ASSERT_EQ(window.Count("itemclick", "item1"), 1u);  // carries the item
  EXPECT_EQ(clicked, W("id1"));
  QTest::mouseClick(qt::WidgetOf(items[1].FindSubControl("Kit_ItemBtn")), Qt::LeftButton);
  EXPECT_EQ(window.Count("click", "Kit_ItemBtn"), 1u);
  EXPECT_EQ(window.Count("itemclick"), 1u);  // a button in an item is a click, not an item click

  EXPECT_TRUE(list.Remove(items[0]));
  EXPECT_FALSE(items[0]);  // removing deletes; the handle goes inert
  EXPECT_EQ(list.GetCount(), 2);
  list.RemoveAll();
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_FALSE(items[1]);
  EXPECT_FALSE(window.CreateFromSkin("NoSuchItem.xml"));
}

TEST_F(ControlTest, TabLayoutSelectsPagesInRange) {
  Control tabs = window.FindControl("Kit_Tabs");
  EXPECT_EQ(tabs.GetPageCount(), 3);
  EXPECT_TRUE(tabs.SelectItem(2));
  EXPECT_FALSE(tabs.SelectItem(3));
  EXPECT_FALSE(tabs.SelectItem(-1));
  EXPECT_EQ(tabs.GetCurSel(), 2);
  EXPECT_EQ(window.FindControl("Kit_Button").GetCurSel(), -1);
}

TEST_F(ControlTest, SkinAttributeStrings) {
  Control label = window.FindControl("Kit_Label");
  Control button = window.FindControl("Kit_Button");
  for (auto [name, value] : {std::pair{"text", "<b>张三</b>"},
                             {"tooltip", "C:\\下载"},
                             {"userdata", "u1"},
                             {"visible", "false"},
                             {"mouse", "false"},
                             {"height", "33"},
                             {"bkcolor", "#FF212830"}}) {
    EXPECT_TRUE(label.SetAttribute(name, value)) << name;
    EXPECT_EQ(label.GetAttribute(name), W(value)) << name;
  }
  EXPECT_EQ(label.GetText(), W("<b>张三</b>"));
  EXPECT_EQ(static_cast<QLabel*>(qt::WidgetOf(label))->textFormat(), Qt::PlainText);
  EXPECT_EQ(label.GetToolTip(), W("C:\\下载"));
  EXPECT_EQ(label.GetUserData(), W("u1"));
  EXPECT_FALSE(label.IsVisible());
  EXPECT_TRUE(qt::WidgetOf(label)->testAttribute(Qt::WA_TransparentForMouseEvents));
  EXPECT_EQ(label.GetFixedHeight(), 33);
  EXPECT_TRUE(button.SetAttribute("enabled", "false"));
  EXPECT_FALSE(button.IsEnabled());

  platform::ScopedTraceCapture trace;
  for (auto [name, value] :
       {std::pair{"enabled", "no"}, {"bkcolor", "red"}, {"glow", "true"}, {"height", "-4"}}) {
    EXPECT_FALSE(button.SetAttribute(name, value)) << name;
  }
  EXPECT_EQ(trace.Count("SetAttribute"), 4u);
  EXPECT_FALSE(button.IsEnabled());  // a bad value changes nothing
}

}  // namespace
}  // namespace ui::test

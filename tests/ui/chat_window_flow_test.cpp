// The chat window end to end, against the embedded engine: a message
// arrives, its conversation goes to the top with a dot, opening it clears
// the dot and the group is reported read.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QListView>
#include <QTest>
#include <QTimer>

#include <filesystem>
#include <fstream>

#include "host/host_system.h"
#include "host/local/engine_group_link.h"
#include "host/local/local_host.h"
#include "imsdk/engine_control.h"
#include "imsdk/im_sdk.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/module_counters.h"
#include "service/sending_json.h"
#include "store/chat_db.h"
#include "tests/ui/test_window.h"
#include "ui/kit/chat_list.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/main/im_wnd.h"
#include "ui/port/chat_window_port.h"

namespace {

using ui::test::PumpUntil;

class ChatWindowFlowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    engine_.Reset();
    for (const char* id : {"10001", "10002", "10003"}) {
      imsdk::AccountOptions options;
      options.nick = std::string("nick") + id;
      ASSERT_TRUE(engine_.CreateAccount(id, options));
    }
    engine_.MakeFriends("10001", "10002");
    service::Counters().initialised.store(0);
    service::Counters().logged_in.store(0);
    tools_.AttachWindow(&port_);
    ASSERT_TRUE(window_.CreateChatWindow());
    window_.ShowChat();
  }
  void TearDown() override {
    TIMUninit();
    tools_.AttachWindow(nullptr);
    window_.DestroyChatWindow();
    CChatDb::Instance().Close();
    service::ForgetCurrentConversation();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  bool DotOn(int row) {
    return !window_.Conversations().rows().Get(row, "ConverItem_logo", "normalimage").empty();
  }

  imsdk::EngineControl& engine_ = imsdk::EngineControl::Instance();
  CChatTools tools_;
  CIMWnd window_{tools_};
  ui::ChatWindowPort port_{window_};
};

TEST_F(ChatWindowFlowTest, MessagesMarkAndRaiseConversationsAndOpeningAGroupReadsIt) {
  std::string group = engine_.CreateGroup("10002", "图纸评审组", {"10001"});
  ASSERT_FALSE(group.empty());
  WString groupId = platform::Utf8ToUtf16(group);
  ASSERT_TRUE(service::SignIn(tools_, u"10001", u"sig"));
  ASSERT_TRUE(PumpUntil([&] { return engine_.SignedInAccount() == "10001"; }));
  ui::RowList& rows = window_.Conversations().rows();
  ASSERT_TRUE(PumpUntil([&] { return rows.Find(groupId) >= 0; }));

  // A conversation already listed keeps its place and gets a dot.
  ASSERT_EQ(engine_.SendText("10002", kTIMConv_Group, group, "请核对楼梯间"), 0);
  ASSERT_TRUE(PumpUntil([&] { return DotOn(rows.Find(groupId)); }));
  EXPECT_EQ(rows.Get(rows.Find(groupId), "ConverItem_description", "text"), u"请核对楼梯间");
  EXPECT_GT(engine_.UnreadCount("10001", kTIMConv_Group, group), 0u);
  // A new one comes in at the top (the conversation list, newest first).
  ASSERT_EQ(engine_.SendText("10002", kTIMConv_C2C, "10001", "你好"), 0);
  ASSERT_TRUE(PumpUntil([&] { return rows.Find(u"10002") == 0 && DotOn(0); }));

  window_.Conversations().OpenConversation(groupId);
  EXPECT_EQ(service::CurrentConvId(), groupId);
  EXPECT_EQ(window_.FindControl("IMWnd_SessionName").GetText(), u"图纸评审组");
  EXPECT_EQ(window_.FindControl("IMWnd_ChatModule").GetCurSel(), ui::main::kChatPage);
  EXPECT_TRUE(PumpUntil([&] {
    return engine_.UnreadCount("10001", kTIMConv_Group, group) == 0 && rows.Find(groupId) == 0 &&
           !DotOn(0);
  }));
  EXPECT_FALSE(tools_.IsUnread(groupId));
  EXPECT_TRUE(DotOn(rows.Find(u"10002")));
}

// Clicks `button` of the top-level window `className` once it shows.
void ClickWhenShown(const char* className, const char* button) {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == QLatin1String(className) && w->isVisible()) {
      if (auto* b = w->findChild<QAbstractButton*>(button)) return b->click();
    }
  }
  QTimer::singleShot(5, [className, button] { ClickWhenShown(className, button); });
}

TEST_F(ChatWindowFlowTest, LeavingAGroupFromItsPanelRemovesItsConversationAndPage) {
  host::local::LocalHost host(testing::TempDir() + "/flow-space");
  host.Install();
  for (int32_t id : {10001, 10002}) {
    host::local::LocalAccount account;
    account.id = id;
    host.AddAccount(account);
  }
  host.SignIn(10001);
  host::local::EngineGroupLink link(host);
  std::string group = engine_.CreateGroup("10002", "图纸评审组", {"10001"});
  ASSERT_EQ(engine_.SendText("10002", kTIMConv_Group, group, "请核对楼梯间"), 0);
  WString groupId = platform::Utf8ToUtf16(group);
  ASSERT_TRUE(service::SignIn(tools_, u"10001", u"sig"));
  ui::RowList& rows = window_.Conversations().rows();
  ASSERT_TRUE(PumpUntil([&] { return rows.Find(groupId) >= 0 && tools_.IsJoinedGroup(groupId); }));
  window_.Conversations().OpenConversation(groupId);
  ASSERT_EQ(window_.FindControl("IMWnd_ChatModule").GetCurSel(), ui::main::kChatPage);

  // The panel opens at the button; leaving asks first (the module's box).
  QTimer::singleShot(0, [] { ClickWhenShown("GroupFunction", "GroupFunction_LeaveBtn"); });
  QTimer::singleShot(0, [] { ClickWhenShown("CChatMessageBox", "ChatMessagebox_ConfirmBtn"); });
  window_.SendNotify(window_.FindControl("GroupFunctionBtn"), ui::kNotifyClick);

  EXPECT_TRUE(PumpUntil([&] {
    return window_.FindControl("IMWnd_ChatModule").GetCurSel() == ui::main::kEmptyChatPage &&
           rows.Find(groupId) < 0 && !tools_.IsJoinedGroup(groupId);
  }));
  EXPECT_EQ(engine_.GroupMembers(group), std::vector<std::string>{"10002"});
  std::vector<MessageStru> stored;
  CChatDb::Instance().QueryCurrentConvMsg(groupId, u"10001", 10, stored);
  EXPECT_TRUE(stored.empty());
  host.Uninstall();
}

// A drawing arriving in the open group: a double-click opens it through the
// host (fetched, its stored row pointed at the copy) and a click on the
// sender's avatar opens the sender's card.
TEST_F(ChatWindowFlowTest, ADrawingOpensOnADoubleClickAndAnAvatarOpensItsSendersCard) {
  namespace fs = std::filesystem;
  const fs::path root = fs::path(testing::TempDir()) / "flow-drawing";
  fs::remove_all(root);
  fs::create_directories(root);
  host::local::LocalHost host((root / "space").string());
  host.Install();
  for (int32_t id : {10001, 10002}) {
    host::local::LocalAccount account;
    account.id = id;
    host.AddAccount(account);
  }
  host::local::EngineGroupLink link(host);
  ASSERT_EQ(engine_.CreateGroup("10002", "图纸评审组", {"10001"}, "gd"), "gd");
  host.SignIn(10002);
  std::ofstream(root / "stairs.dwg") << "AC1032 stairs";
  SpaceFileRef uploaded;
  ASSERT_TRUE(HostSystem::instance()->GetCloudService()->UploadSpaceFile(
      0, platform::Utf8ToUtf16((root / "stairs.dwg").string()).c_str(), u"description", 0, uploaded,
      0, host.FindGroup(u"gd")->cloudGroupId, 0));
  const WString ref = uploaded.drawingRef;
  host.SignIn(10001);
  DrawingMsgStru drawing;
  drawing.fileName = u"stairs.dwg";
  drawing.fileRefId = ref;
  drawing.filePath = u"/home/wang/stairs.dwg";
  const std::string payload =
      service::CompactText(service::DrawingFilePayload(drawing, u"10002", 1700000000000));
  ASSERT_EQ(engine_.SendText("10002", kTIMConv_Group, "gd", "请看楼梯间"), 0);
  ASSERT_TRUE(service::SignIn(tools_, u"10001", u"sig"));
  ui::RowList& rows = window_.Conversations().rows();
  ASSERT_TRUE(PumpUntil([&] { return rows.Find(u"gd") >= 0; }));
  window_.Conversations().OpenConversation(u"gd");
  // The drawing arrives while the group is open.
  ASSERT_EQ(engine_.SendCustom("10002", kTIMConv_Group, "gd", payload), 0);
  ui::ChatList items(window_.FindControl("HisRecordList"));
  // The drawing's item: the newest one.
  int row = -1;
  ASSERT_TRUE(PumpUntil([&] {
    row = items.Count() - 1;
    return row >= 0 && items.Object(row, 1).image == u"../img/DWG.png";
  }));
  auto* view = qobject_cast<QListView*>(ui::qt::WidgetOf(items.control()));
  ASSERT_NE(view, nullptr);
  // The window's own scroll to the bottom (50 ms) has run and the view rests.
  ui::test::Pump(120);
  // Where a template control of the item is now, in viewport coordinates.
  auto stampPoint = [&](const char* name) {
    QWidget* control = view->findChild<QWidget*>(name);
    QWidget* stamp = view->findChild<QWidget*>("FriendChatItem");
    EXPECT_TRUE(control && stamp) << name;
    if (!control || !stamp) return QPoint();
    const QRect item = view->visualRect(view->model()->index(row, 0));
    return item.topLeft() + control->mapTo(stamp, QPoint(6, 6));
  };

  host.ClearCalls();
  const QPoint bubble = view->viewport()->mapTo(view->window(), stampPoint("List_Item_RichEdit"));
  window_.SendMessage(ui::kWmLButtonDblClk, 0, ui::MakeLParam(bubble.x(), bubble.y()));
  std::vector<std::string> calls = host.CallNames();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "OpenDrawingFile"), 1);
  std::vector<MessageStru> stored;
  CChatDb::Instance().QueryCurrentConvMsg(u"gd", u"10001", 10, stored);
  auto sent = std::find_if(stored.begin(), stored.end(), [&](const MessageStru& m) {
    return !m.elems.empty() && m.elems[0].drawing.fileRefId == ref;
  });
  ASSERT_NE(sent, stored.end());
  const WString copy = sent->elems.at(0).drawing.filePath;
  EXPECT_NE(copy, u"/home/wang/stairs.dwg");
  EXPECT_TRUE(fs::exists(platform::Utf16ToUtf8(copy)));
  EXPECT_EQ(items.Object(row, 1).stateImage, u"../img/FileLoaded.png");

  std::string cardId;
  std::function<void()> look = [&] {
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->objectName() != "CDisPlayUserInfoWindow" || !w->isVisible()) continue;
      QWidget* id = w->findChild<QWidget*>("UserInfo_Id");
      cardId = id ? id->property("text").toString().toStdString() : "?";
      if (auto* close = w->findChild<QAbstractButton*>("UserInfo_closebtn")) close->click();
      return;
    }
    QTimer::singleShot(5, look);
  };
  QTimer::singleShot(0, look);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, stampPoint("FriendChatItem_Avatar"));
  EXPECT_TRUE(PumpUntil([&] { return !cardId.empty(); }));
  EXPECT_EQ(cardId, "账号: 10002");
  host.Uninstall();
}

}  // namespace

// The main window's frame, the custom messages it receives and the window
// port from other threads.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <optional>
#include <thread>

#include "host/local/local_host.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/named_mutexes.h"
#include "service/posting.h"
#include "service/sdk_event_record.h"
#include "tests/ui/test_window.h"
#include "ui/kit/chat_list.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/main/im_wnd.h"
#include "ui/port/chat_window_port.h"

namespace {

using ui::test::PumpUntil;

QWidget* ShownTopLevel(const char* className) {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == QLatin1String(className) && w->isVisible()) return w;
  }
  return nullptr;
}

// Records the messages the window receives.
struct SpyWnd : CIMWnd {
  using CIMWnd::CIMWnd;
  std::vector<unsigned> received;
  ui::LRESULT HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) override {
    received.push_back(uMsg);
    return CIMWnd::HandleMessage(uMsg, wParam, lParam);
  }
};

class ImWndTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.AttachWindow(&port_);
    ASSERT_TRUE(window_.CreateChatWindow());
  }
  void TearDown() override {
    tools_.AttachWindow(nullptr);
    window_.DestroyChatWindow();
    service::ForgetCurrentConversation();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  void ShowAt(int height) {
    window_.MoveWindow(ui::Rect{0, 0, 960, height});
    window_.ShowChat();
  }
  int TabPage() { return window_.FindControl("tabs").GetCurSel(); }
  int ChatPage() { return window_.FindControl("IMWnd_ChatModule").GetCurSel(); }
  template <unsigned Msg>
  bool Post(service::PayloadOf<Msg> payload) {
    return service::PostPayload<Msg>(port_.ChatWindow(), tools_.CurrentSession(),
                                     std::move(payload));
  }
  void ClickClose() { window_.SendNotify(window_.FindControl("IMWnd_closebtn"), ui::kNotifyClick); }

  CChatTools tools_;
  SpyWnd window_{tools_};
  ui::ChatWindowPort port_{window_};
};

TEST_F(ImWndTest, StartsHiddenAndTwoClicksOnCloseHideWithTheStateKeptForTheNextShow) {
  EXPECT_EQ(service::ModuleMutexes().size(), 20u);
  EXPECT_EQ(service::CurrentConvId(), u"error");
  EXPECT_FALSE(window_.IsWindowVisible());
  EXPECT_FALSE(window_.CreateChatWindow());
  EXPECT_EQ(TabPage(), CIMWnd::kConversationsPage);
  EXPECT_EQ(ChatPage(), CIMWnd::kEmptyChatPage);
  EXPECT_TRUE(window_.FindControl("RecentConverBtn").IsSelected());
  EXPECT_FALSE(window_.FindControl("FriendsListBtn").IsSelected());
  EXPECT_NE(port_.ChatWindow(), platform::WindowHandle::kNone);
  ShowAt(680);
  window_.FindControl("IMWnd_SessionName").SetText(u"王工");
  window_.FindControl("tabs").SelectItem(CIMWnd::kFriendsPage);
  ClickClose();
  ClickClose();
  EXPECT_TRUE(PumpUntil([&] { return !window_.IsWindowVisible(); }));
  QCoreApplication::processEvents();  // the second close arrives on a hidden window
  EXPECT_TRUE(window_.IsCreated());
  EXPECT_FALSE(port_.IsWindowVisible());
  window_.ShowChat();
  EXPECT_TRUE(window_.IsWindowVisible());
  EXPECT_EQ(window_.FindControl("IMWnd_SessionName").GetText(), u"王工");
  EXPECT_EQ(TabPage(), CIMWnd::kFriendsPage);
  ui::qt::WidgetOf(window_.FindControl("IMWnd_closebtn"))->window()->close();  // from outside
  EXPECT_FALSE(port_.IsWindowVisible());  // the window's own close ran
  EXPECT_TRUE(window_.IsCreated());
}

TEST_F(ImWndTest, HideChatWindowWithoutASharedSessionChangesNothing) {
  host::local::LocalHost host("space");
  for (bool installed : {false, true}) {
    if (installed) host.Install();
    window_.HideChatWindow();
    for (const char* name :
         {"IMWnd_Col1", "IMWnd_Col4", "IMWnd_SharedChatBtn", "ChatDrawBtn", "GroupFunctionBtn"}) {
      EXPECT_TRUE(window_.FindControl(name).IsVisible()) << name << " host " << installed;
    }
  }
  SharedSessionInfo session;
  session.sessionKey = u"@TGS#1";
  host.SetSharedSession(session);
  window_.HideChatWindow();
  EXPECT_FALSE(window_.FindControl("IMWnd_Col3").IsVisible());
  window_.DisplayChatWindow();
  EXPECT_TRUE(window_.FindControl("IMWnd_Col3").IsVisible());
  host.Uninstall();
}

TEST_F(ImWndTest, MoveMessageMovesTheWindowFreesTheRectangleAndSetsTheChatRecordHeight) {
  for (auto [height, expected] :
       {std::pair{142, 0}, {141, 0}, {140, -1}, {100, -30}, {680, 384}, {143, 0}, {144, 1}}) {
    EXPECT_EQ(CIMWnd::ChatRecordHeight(height), expected) << height;  // truncated toward zero
  }
  ShowAt(680);
  ASSERT_TRUE(Post<platform::msg::kMoveWindow>({30, 40, 830, 640}));
  EXPECT_TRUE(PumpUntil([&] {
    ui::Rect r = window_.GetWindowRect();
    return r.left == 30 && r.top == 40 && r.Width() == 800 &&
           window_.FindControl("ChatRecord").GetFixedHeight() ==
               CIMWnd::ChatRecordHeight(r.Height());
  }));
}

TEST_F(ImWndTest, NetworkStatusMessageSwitchesToTheNetworkPageAndBack) {
  CChatTools::TIMSetNetworkStatusListenerCallbackFunc(1, 0, "down", &tools_);
  EXPECT_TRUE(PumpUntil([&] { return TabPage() == CIMWnd::kNetworkDownPage; }));
  CChatTools::TIMSetNetworkStatusListenerCallbackFunc(0, 0, "up", &tools_);
  EXPECT_TRUE(PumpUntil([&] { return TabPage() == CIMWnd::kConversationsPage; }));

  window_.FindControl("RecentConverBtn").Selected(false, false);
  window_.FindControl("FriendsListBtn").Selected(true, false);
  CChatTools::TIMSetNetworkStatusListenerCallbackFunc(1, 0, "down", &tools_);
  ASSERT_TRUE(PumpUntil([&] { return TabPage() == CIMWnd::kNetworkDownPage; }));
  CChatTools::TIMSetNetworkStatusListenerCallbackFunc(0, 0, "up", &tools_);
  EXPECT_TRUE(PumpUntil([&] { return TabPage() == CIMWnd::kFriendsPage; }));
}

TEST_F(ImWndTest, ConversationGoneShowsTheEmptyPageOnlyForTheOpenConversation) {
  window_.FindControl("IMWnd_ChatModule").SelectItem(0);
  service::SetCurrentConversation(u"c2c_10002", 1);
  service::SetCurrentPeerId(u"10002");
  Post<platform::msg::kConversationDatum>(WString(u"c2c_other"));
  platform::PostMessage(port_.ChatWindow(), platform::msg::kConversationDatum, 0, 0);
  ui::test::Pump(50);
  EXPECT_EQ(ChatPage(), 0);
  EXPECT_EQ(service::CurrentPeerId(), u"10002");

  Post<platform::msg::kConversationDatum>(WString(u"c2c_10002"));
  EXPECT_TRUE(PumpUntil([&] { return ChatPage() == CIMWnd::kEmptyChatPage; }));
  EXPECT_EQ(service::CurrentPeerId(), u"");
}

TEST_F(ImWndTest, SdkEventRecordIsDispatchedFreedAndMayAskForARecentListRefresh) {
  platform::ScopedTraceCapture trace;
  SdkEventRecord listed{kSdkEventConversationList, R"([{"conv_id":"10002","conv_type":1}])"};
  ASSERT_TRUE(Post<platform::msg::kSdkEvent>(listed));
  EXPECT_TRUE(PumpUntil([&] { return trace.Contains("DealConvListFunc"); }));
  ui::test::Pump(30);
  window_.received.clear();
  for (uint8_t flag : {1, 0}) {  // of a kind nobody handles
    SdkEventRecord record;
    record.recent_list_flag = flag;
    ASSERT_TRUE(Post<platform::msg::kSdkEvent>(record));
  }
  EXPECT_TRUE(PumpUntil([&] { return trace.Count("kind 0 ignored") == 2; }));
  ui::test::Pump(30);
  auto& seen = window_.received;
  EXPECT_EQ(std::count(seen.begin(), seen.end(), platform::msg::kRecentConversationsChanged), 1);
}

TEST_F(ImWndTest, ScrollTimersScrollTheMessageViewToTheBottomAndTheTop) {
  ShowAt(680);
  window_.FindControl("IMWnd_ChatModule").SelectItem(0);  // the chat page
  ui::Control list = window_.FindControl("HisRecordList");
  ui::ChatList items(list);
  for (uint32_t i = 1; i <= 30; ++i) ASSERT_GE(items.Add("SystemReminder.xml", i), 0);
  ASSERT_TRUE(PumpUntil([&] { return list.GetScrollRange() > 0; }));
  window_.StartScrollTimer(CIMWnd::kScrollToBottomTimer);
  EXPECT_TRUE(window_.IsTimerPending(CIMWnd::kScrollToBottomTimer));
  EXPECT_TRUE(PumpUntil([&] { return list.GetScrollPos() == list.GetScrollRange(); }));
  EXPECT_FALSE(window_.IsTimerPending(CIMWnd::kScrollToBottomTimer));
  window_.StartScrollTimer(CIMWnd::kScrollToTopTimer);
  EXPECT_TRUE(PumpUntil([&] { return list.GetScrollPos() == 0; }));
}

TEST_F(ImWndTest, PortRequestsFromAnotherThreadAreCarriedOutByTheWindow) {
  ShowAt(680);
  window_.FindControl("ChatWindow_SendrichEdit").SetText(u"草稿");
  service::SetCurrentConversation(u"c2c_10002", 1);
  QString boxText;
  QTimer watcher;
  QObject::connect(&watcher, &QTimer::timeout, [&] {
    if (QWidget* box = QApplication::activeModalWidget()) {
      if (auto* label = box->findChild<QLabel*>("ChatMessagebox_Msg")) boxText = label->text();
      box->close();
    }
  });
  watcher.start(20);
  bool visibleSeen = false;
  bool answer = true;
  std::thread sdk([&] {
    visibleSeen = port_.IsWindowVisible();
    port_.ShowMessageBox(service::BoxOwner::kChatWindow, u"登录通知", u"您的账号在其他设备登录!!!");
    port_.ResetWindow();
    port_.HideWindow();
    port_.FlashHostWindowIfMinimised();
    answer = port_.Confirm(u"问题", u"确定吗？");
  });
  sdk.join();
  EXPECT_TRUE(visibleSeen);
  EXPECT_FALSE(answer);  // a question cannot wait off the window thread
  EXPECT_TRUE(PumpUntil([&] { return !boxText.isEmpty() && !window_.IsWindowVisible(); }));
  EXPECT_EQ(boxText, QStringLiteral("您的账号在其他设备登录!!!"));
  EXPECT_EQ(window_.FindControl("ChatWindow_SendrichEdit").GetText(), u"");
  EXPECT_EQ(service::CurrentConvId(), u"error");
  EXPECT_EQ(ChatPage(), CIMWnd::kEmptyChatPage);
}

TEST_F(ImWndTest, EachBoxBelongsToItsOwnerTheFailedSignInsToTheHostsMainWindow) {
  QWidget hostFrame;  // the host application's main window
  hostFrame.setGeometry(150, 120, 900, 640);
  hostFrame.show();
  window_.SetParam(reinterpret_cast<void*>(hostFrame.winId()));
  struct Shown {
    QWidget* owner = nullptr;
    QPoint centre;
  };
  std::optional<Shown> shown;
  QTimer watcher;
  QObject::connect(&watcher, &QTimer::timeout, [&] {
    if (QWidget* box = QApplication::activeModalWidget()) {
      shown = Shown{box->parentWidget(), box->frameGeometry().center()};
      box->close();
    }
  });
  watcher.start(20);
  auto show = [&](service::BoxOwner owner) {
    shown.reset();
    window_.ShowPortBox(PortBoxRequest{static_cast<int>(owner), u"登录", u"登录失败"});
    return shown;
  };

  std::optional<Shown> host = show(service::BoxOwner::kHostWindow);
  ASSERT_TRUE(host);
  EXPECT_EQ(host->owner, &hostFrame);
  EXPECT_EQ(host->centre, hostFrame.frameGeometry().center());
  std::optional<Shown> chat = show(service::BoxOwner::kChatWindow);
  ASSERT_TRUE(chat);
  EXPECT_EQ(chat->owner, ui::qt::WidgetOf(window_.FindControl("IMWnd_closebtn"))->window());
  std::optional<Shown> none = show(service::BoxOwner::kNone);
  ASSERT_TRUE(none);
  EXPECT_EQ(none->owner, nullptr);
  // A host window that is gone: the box still shows, without owner.
  window_.SetParam(reinterpret_cast<void*>(uintptr_t{0x7ffffff0}));
  std::optional<Shown> stale = show(service::BoxOwner::kHostWindow);
  ASSERT_TRUE(stale);
  EXPECT_EQ(stale->owner, nullptr);
}

TEST_F(ImWndTest, DestroyingFreesPayloadsStillQueued) {
  platform::WindowHandle handle = port_.ChatWindow();
  ASSERT_TRUE(Post<platform::msg::kSdkEvent>(SdkEventRecord{}));
  ASSERT_TRUE(Post<platform::msg::kMoveWindow>({}));
  ASSERT_TRUE(Post<ui::port_msg::kShowBox>(PortBoxRequest{}));
  window_.DestroyChatWindow();
  EXPECT_FALSE(window_.IsCreated());
  EXPECT_EQ(port_.ChatWindow(), platform::WindowHandle::kNone);
  EXPECT_FALSE(service::Post<platform::msg::kNetworkStatusChanged>(handle));
}

// The add menu opens at the lower-left corner of CreateGroupBtn; its first
// item reports the feature to the host and then opens the add-friend dialog.
TEST_F(ImWndTest, AddMenuAtTheButtonOpensTheAddFriendDialogAfterReportingIt) {
  host::local::LocalHost host(testing::TempDir() + "/add-menu-space");
  host.Install();
  ShowAt(680);
  ui::Control button = window_.FindControl("CreateGroupBtn");
  window_.SendNotify(button, ui::kNotifyClick);
  QWidget* menu = nullptr;
  ASSERT_TRUE(PumpUntil([&] { return (menu = ShownTopLevel("CAddFriendMenu ")) != nullptr; }));
  ui::Rect w = window_.GetWindowRect();
  ui::Rect b = button.GetPos();
  EXPECT_EQ(menu->frameGeometry().topLeft(), QPoint(w.left + b.left, w.top + b.bottom));

  std::vector<WString> usesWhenShown;
  std::function<void()> poll = [&] {
    QWidget* dialog = ShownTopLevel("AddFriendWnd");
    if (dialog == nullptr) return QTimer::singleShot(1, poll);
    usesWhenShown = host.FeatureUses();
    dialog->close();
  };
  QTimer::singleShot(0, poll);
  menu->findChild<QAbstractButton*>("Elem_Menu_AddFriend")->click();
  EXPECT_TRUE(PumpUntil([&] { return !usesWhenShown.empty() && !ShownTopLevel("AddFriendWnd"); }));
  EXPECT_EQ(usesWhenShown, std::vector<WString>{u"IM-AddFriend"});
}

}  // namespace

namespace {

void SendMouse(QWidget* target, QEvent::Type type, QPoint local, Qt::MouseButtons buttons) {
  QPoint global = target->mapToGlobal(local);
  QMouseEvent event(type, local, global, Qt::LeftButton, buttons, Qt::NoModifier);
  QApplication::sendEvent(target, &event);
}

// As the toolkit delivers it: to the deepest widget under the point.
void Drag(QWidget* widget, QPoint from, QPoint by) {
  QWidget* target = widget->childAt(from) ? widget->childAt(from) : widget;
  from = target->mapFrom(widget, from);
  SendMouse(target, QEvent::MouseButtonPress, from, Qt::LeftButton);
  SendMouse(target, QEvent::MouseMove, from + by, Qt::LeftButton);
  SendMouse(target, QEvent::MouseButtonRelease, from + by, Qt::NoButton);
}

TEST_F(ImWndTest, TheTitleRowMovesTheWindowAndItsEdgesResizeIt) {
  window_.MoveWindow(ui::Rect{100, 100, 1060, 780});
  window_.ShowChat();
  QWidget* title = ui::qt::WidgetOf(window_.FindControl("IMWnd_SessionName"));
  Drag(title, QPoint(5, 5), QPoint(30, 20));
  ui::Rect moved = window_.GetWindowRect();
  EXPECT_EQ(moved.left, 130);
  EXPECT_EQ(moved.top, 120);
  EXPECT_EQ(moved.Width(), 960);

  QWidget* search = ui::qt::WidgetOf(window_.FindControl("IMWnd_searchEdit"));
  Drag(search, QPoint(20, 10), QPoint(50, 50));  // an edit takes the mouse itself
  EXPECT_EQ(window_.GetWindowRect().left, 130);

  QWidget* root = ui::qt::WidgetOf(window_.FindControl("IMWnd"));
  Drag(root, QPoint(root->width() - 2, root->height() - 2), QPoint(40, 30));
  ui::Rect grown = window_.GetWindowRect();
  EXPECT_EQ(grown.Width(), 1000);
  EXPECT_EQ(grown.Height(), 710);
  EXPECT_EQ(window_.FindControl("ChatRecord").GetFixedHeight(), CIMWnd::ChatRecordHeight(710));
}

}  // namespace

namespace {

TEST_F(ImWndTest, EveryControlIsNamedForScreenReadersAndTheToolkitSpeaksChinese) {
  QWidget* root = ui::qt::WidgetOf(window_.FindControl("IMWnd"));
  int checked = 0;
  for (QWidget* w : root->findChildren<QWidget*>()) {
    if (!ui::qt::IsNamedControl(w)) continue;
    auto* button = qobject_cast<QAbstractButton*>(w);
    bool interactive =
        button || qobject_cast<QLineEdit*>(w) || qobject_cast<QAbstractScrollArea*>(w);
    // The row template only paints rows; the rows are named by the list.
    bool inRowTemplate = false;
    for (QWidget* p = w; p; p = p->parentWidget())
      inRowTemplate |= p->property("im_stamp").toBool();
    if (!interactive || inRowTemplate) continue;
    ++checked;
    bool readsItsText = button && !button->text().isEmpty();
    EXPECT_TRUE(readsItsText || !w->accessibleName().isEmpty()) << w->objectName().toStdString();
    if (button && button->text().isEmpty() && !button->toolTip().isEmpty()) {
      EXPECT_EQ(w->accessibleName(), button->toolTip()) << w->objectName().toStdString();
    }
  }
  EXPECT_GT(checked, 20);
  EXPECT_EQ(ui::qt::WidgetOf(window_.FindControl("IMSetUp"))->accessibleName(), "设置");
  EXPECT_FALSE(ui::qt::WidgetOf(window_.FindControl("IMWnd_SessionName"))
                   ->accessibleDescription()
                   .isEmpty());
  EXPECT_NE(QLineEdit::tr("&Undo"), QStringLiteral("&Undo"));
}

}  // namespace

namespace {

QMenu* ShownMenu() {
  return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

QStringList MenuTexts(QMenu* menu) {
  QStringList texts;
  if (menu) {
    for (QAction* action : menu->actions()) texts << action->text();
  }
  return texts;
}

TEST_F(ImWndTest, ContextMenusByWhereTheRightClickWasAndCreatingAGroupIsReported) {
  ShowAt(680);
  auto rightClick = [&](const ui::Control& control) {
    window_.SendNotify(control, ui::kNotifyRButtonUp);
    return MenuTexts(ShownMenu());
  };
  // The friend and group rows' menus are the friends page's own tests.
  EXPECT_TRUE(rightClick(window_.FindControl("ChatWindow_SendrichEdit")).isEmpty());
  EXPECT_EQ(rightClick(window_.FindControl("ConversationList")), QStringList{"删除会话"});

  // "删除会话" acts on the open conversation: with none open, only the empty page.
  window_.FindControl("IMWnd_ChatModule").SelectItem(0);
  ShownMenu()->actions()[0]->trigger();
  ShownMenu()->close();
  EXPECT_TRUE(PumpUntil([&] { return ChatPage() == CIMWnd::kEmptyChatPage; }));

  // 3163 opens the create-group picker modally, once its use was reported.
  host::local::LocalHost host("space");
  host.Install();
  std::vector<WString> usesWhenShown;
  std::function<void()> poll = [&] {
    QWidget* dialog = ShownTopLevel("CreateGroupWindow");
    if (dialog == nullptr) return QTimer::singleShot(1, poll);
    usesWhenShown = host.FeatureUses();
    dialog->close();
  };
  QTimer::singleShot(0, poll);
  platform::PostMessage(port_.ChatWindow(), platform::msg::kOpenCreateGroup, 0, 0);
  EXPECT_TRUE(
      PumpUntil([&] { return !usesWhenShown.empty() && !ShownTopLevel("CreateGroupWindow"); }));
  EXPECT_EQ(usesWhenShown, std::vector<WString>{u"IM-CreateGroup"});
  host.Uninstall();
}

}  // namespace

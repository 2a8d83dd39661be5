// The message view on the real skin, driven by a source in memory; its pure
// rules and its message map by tables.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QListView>
#include <QScreen>
#include <QWidget>

#include <cstdlib>
#include <fstream>

#include "platform/window_messages.h"
#include "tests/ui/fake_message_source.h"
#include "tests/ui/test_window.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/main/message_map.h"
#include "ui/main/message_view.h"

namespace {

using ui::main::MessageView;
using ui::main::TransferState;

MessageStru Message(uint64_t uniqueId, uint64_t time, std::vector<ElemStru> elems,
                    bool fromSelf = false) {
  MessageStru m;
  m.conv_id = u"c2c_10002";
  m.conv_type = 1;
  m.sender = fromSelf ? u"10001" : u"10002";
  m.unique_id = uniqueId;
  m.server_time = time;
  m.is_from_self = fromSelf;
  m.elems = std::move(elems);
  return m;
}

ElemStru Elem(int32_t type) {
  ElemStru e;
  e.elem_type = type;
  return e;
}

ElemStru Text(const WString& text) {
  ElemStru e = Elem(kElemText);
  e.text = text;
  return e;
}

TEST(MessageViewRules, FileTypeKeys) {
  const std::pair<WString, WString> cases[] = {
      {u"plan.dwg", u"DWG"},     {u"Report.Pdf", u"PDF"}, {u"a.b.xlsx", u"XLSX"},
      {u"notes.abc", u"UNKNOW"}, {u"README", u"UNKNOW"},  {u"v1.2/readme", u"UNKNOW"},
      {u"trailing.", u"UNKNOW"}};
  for (const auto& [name, key] : cases) EXPECT_EQ(ui::main::FileTypeKey(name), key) << name.size();
}

TEST(MessageViewRules, PictureFailsAfterSixtyOneSecondsInProgress) {
  using ui::main::ExpireStalledPicture;
  EXPECT_EQ(ExpireStalledPicture(TransferState::kInProgress, 1000, 1060),
            TransferState::kInProgress);
  EXPECT_EQ(ExpireStalledPicture(TransferState::kInProgress, 1000, 1061), TransferState::kFailed);
  EXPECT_EQ(ExpireStalledPicture(TransferState::kDone, 1000, 9999), TransferState::kDone);
}

TEST(MessageViewRules, HeaderIsNameThenLocalMinute) {
  setenv("TZ", "UTC", 1);
  tzset();
  EXPECT_EQ(ui::main::ItemHeader(u"王工", 1700000000), u"王工 2023/11/14 22:13");
  EXPECT_EQ(ui::main::ItemHeader(u"", 0), u" 1970/01/01 00:00");
}

TEST(MessageMapTest, MergesPagesAndNewMessagesWithoutDuplicatesInTimeOrder) {
  ui::main::MessageMap map;
  EXPECT_EQ(map.Merge(u"c", {Message(3, 30, {Text(u"c")}), Message(4, 40, {Text(u"d")})}), 2u);
  MessageStru sent = Message(0, 50, {Text(u"mine")}, true);
  sent.local_id = 7;
  EXPECT_EQ(map.Merge(u"c", {Message(4, 40, {Text(u"d")}), sent}), 1u);
  // An older page overlapping the held messages, and the sent one come back
  // from the store under its unique id.
  MessageStru stored = sent;
  stored.unique_id = 99;
  EXPECT_EQ(map.Merge(u"c", {Message(1, 10, {}), Message(2, 20, {}), Message(3, 30, {}), stored}),
            2u);
  std::vector<ui::main::ShownMessage>& list = *map.Find(u"c");
  std::vector<uint64_t> times;
  for (const auto& shown : list) times.push_back(shown.message.server_time);
  EXPECT_EQ(times, (std::vector<uint64_t>{10, 20, 30, 40, 50}));
  EXPECT_EQ(list.back().itemId, 7u);  // a local id is its item id
  EXPECT_EQ(list.back().message.unique_id, 99u);
  EXPECT_EQ(map.FindItem(7), &list.back());
}

class MessageViewTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(window_.Create(nullptr, u"test"));
    controls_.LookUp(window_);
    view_ = std::make_unique<MessageView>(window_, controls_, source_, desktop_);
    view_->SetClock([this] { return now_; });
    view_->SetBoxShower([this](const WString& title, const WString& text) {
      boxes_.push_back(title + u"|" + text);
    });
  }
  void TearDown() override {
    window_.Close();
    ui::test::Pump(10);
  }
  // A refresh in mode 2: reload, rebuild.
  void Refresh() {
    view_->ReloadCurrentConversation();
    view_->ShowMsgs();
  }
  int Row(const MessageStru& m) {
    for (auto& shown : *view_->messages().Find(source_.convId)) {
      if (shown.message.unique_id == m.unique_id) return view_->list().Find(shown.itemId);
    }
    return -1;
  }

  ui::test::RecordingWindow window_{"IMWnd.xml", "DuiLibRes\\skin\\"};
  ui::main::MainControls controls_;
  ui::test::FakeMessageSource source_;
  struct NoDesktop : ui::Desktop {
    std::vector<WString> opened;
    bool OpenFile(const WString& p) override { return opened.push_back(p), true; }
    bool ShowInFolder(const WString& p) override { return opened.push_back(p), true; }
  } desktop_;
  std::unique_ptr<MessageView> view_;
  std::time_t now_ = 1700000000;
  std::vector<WString> boxes_;
};

TEST_F(MessageViewTest, EmptyMessagesAreReadMarkedWithOneReportOnlyWhenFromOthers) {
  source_.newMessages = {Message(1, 100, {}, true)};
  Refresh();
  EXPECT_EQ(source_.readReports, 0);
  source_.newMessages = {Message(2, 101, {}), Message(3, 102, {})};
  Refresh();
  EXPECT_EQ(source_.readReports, 1);
  Refresh();
  EXPECT_EQ(source_.readReports, 1);
  EXPECT_EQ(view_->list().Count(), 0);
}

TEST_F(MessageViewTest, TemplatesHeadersAndNoticesWhoeverSentThem) {
  source_.friends[u"10002"] = u"王工";
  ElemStru notice = Elem(kElemCustom);
  notice.drawing.subType = 2;
  notice.drawing.content = u"共享聊图已结束";
  MessageStru mine = Message(1, 1000, {Text(u"你好[微笑]")}, true);
  MessageStru theirs = Message(2, 1001, {Text(u"好")});
  MessageStru selfNotice = Message(3, 1002, {notice}, true);
  MessageStru local = Message(4, 1003, {Elem(kElemLocalNotice)});
  source_.newMessages = {mine, theirs, selfNotice, local};
  Refresh();
  ui::ChatList& list = view_->list();
  ASSERT_EQ(list.Count(), 4);
  EXPECT_EQ(list.TemplateOf(Row(mine)), "MyselfChatItem.xml");
  EXPECT_EQ(list.TemplateOf(Row(theirs)), "FriendChatItem.xml");
  EXPECT_EQ(list.TemplateOf(Row(selfNotice)), "SystemReminder.xml");
  EXPECT_EQ(list.TemplateOf(Row(local)), "SystemReminder.xml");
  EXPECT_EQ(list.Get(Row(theirs), "List_Item_Edit", "text").substr(0, 3), u"王工 ");
  EXPECT_EQ(list.Get(Row(mine), "List_Item_Edit", "text").substr(0, 3), u"张明 ");
  EXPECT_EQ(list.Get(Row(mine), "MsgContainer", "bkcolor"), u"#FF4EC5CE");
  EXPECT_EQ(list.PlainText(Row(mine)), u"你好[微笑]");  // copied as its code
  EXPECT_EQ(list.PlainText(Row(selfNotice)), u"共享聊图已结束");
  // The item resize rule, once laid out: content height h gives the bubble
  // h + 10 and the item h + 45.
  const int row = Row(theirs);
  const int content = list.ContentSize(row).y;
  EXPECT_EQ(list.ItemHeight(row), content + 45);
  EXPECT_EQ(list.Get(row, "MsgContainer", "height"), platform::W(std::to_string(content + 10)));
}

// Items carry estimated heights until they come near the view; laying them
// out for real there must not move what the reader is looking at.
TEST_F(MessageViewTest, ItemsInViewAreLaidOutAndTheViewKeepsItsPlace) {
  for (uint64_t i = 1; i <= 150; ++i) {
    WString text = u"第" + platform::W(std::to_string(i)) + u"条";
    for (uint64_t line = 0; line < i % 5; ++line) text += u"\nline of a longer message [微笑]";
    source_.newMessages.push_back(Message(i, 1000 + i, {Text(text)}, i % 3 == 0));
  }
  window_.MoveWindow(ui::Rect{0, 0, 960, 680});
  window_.ShowWindow(true, false);
  controls_.chatModule.SelectItem(0);
  Refresh();
  ui::test::Pump(30);
  ui::ChatList& list = view_->list();
  ASSERT_EQ(list.Count(), 150);
  std::vector<int> estimated;
  for (int row = 0; row < list.Count(); ++row) estimated.push_back(list.ItemHeight(row));

  ui::Control& control = controls_.hisRecordList;
  control.SetScrollPos(control.GetScrollRange());
  EXPECT_EQ(control.GetScrollPos(), control.GetScrollRange());  // still at the bottom
  const int last = list.Count() - 1;
  const int shownHeight = list.ItemHeight(last);
  EXPECT_EQ(shownHeight, list.ContentSize(last).y + 45);

  // Upwards a wheel notch at a time: the row at the top moves down by the
  // notch exactly, whatever the rows above it turned out to be.
  auto* view = qobject_cast<QListView*>(ui::qt::WidgetOf(control));
  ASSERT_NE(view, nullptr);
  while (control.GetScrollPos() > 60) {
    QModelIndex top = view->indexAt(QPoint(view->viewport()->width() / 2, 1));
    ASSERT_TRUE(top.isValid());
    const int before = view->visualRect(top).top();
    control.SetScrollPos(control.GetScrollPos() - 60);
    ASSERT_EQ(view->visualRect(top).top(), before + 60) << "row " << top.row();
  }
  control.SetScrollPos(0);
  EXPECT_EQ(control.GetScrollPos(), 0);
  const int firstHeight = list.ItemHeight(0);
  EXPECT_EQ(firstHeight, list.ContentSize(0).y + 45);
  int corrected = 0;
  for (int row = 0; row < list.Count(); ++row) corrected += list.ItemHeight(row) != estimated[row];
  EXPECT_GT(corrected, 0);  // the estimates were not all right: the anchoring was needed
}

// The items are painted from their templates' stamps: the header, the
// bubble and the content all reach the screen.
TEST_F(MessageViewTest, ItemsArePaintedWithHeaderBubbleAndContent) {
  source_.newMessages = {Message(1, 1000, {Text(u"看一下这张图")}, true)};
  window_.MoveWindow(ui::Rect{0, 0, 960, 680});
  window_.ShowWindow(true, false);
  controls_.chatModule.SelectItem(0);
  Refresh();
  ui::test::Pump(50);
  QWidget* list = ui::qt::WidgetOf(controls_.hisRecordList);
  ASSERT_NE(list, nullptr);
  // The whole window, as a person sees it: the list is painted inside it.
  QWidget* top = list->window();
  // What the window's own paint put on the screen: grab() paints the widgets
  // again by another path, where a stamp painted straight into the list
  // looked right while the screen missed its children.
  QPoint origin = list->mapTo(top, QPoint(0, 0));
  QImage shot =
      QGuiApplication::primaryScreen()
          ->grabWindow(top->winId(), origin.x(), origin.y(), list->width(), list->height())
          .toImage();
  int bubble = 0, header = 0;
  for (int y = 0; y < shot.height(); ++y) {
    for (int x = 0; x < shot.width(); ++x) {
      QColor c = shot.pixelColor(x, y);
      if (c == QColor(0x4E, 0xC5, 0xCE)) ++bubble;
      // The header's grey text (#8D8D8D, anti-aliased) above the bubble.
      if (std::abs(c.red() - c.blue()) < 8 && c.red() < 0xC0 && c.red() > 0x60) ++header;
    }
  }
  EXPECT_GT(bubble, 1000);
  EXPECT_GT(header, 20);
}

// Signing out forgets every conversation: the next user sees none of the
// previous user's items, even in a conversation of the same id.
TEST_F(MessageViewTest, ClearingForgetsThePreviousUsersMessages) {
  source_.newMessages = {Message(1, 1000, {Text(u"上一个用户的消息")})};
  Refresh();
  ASSERT_EQ(view_->list().Count(), 1);
  view_->Clear();
  EXPECT_EQ(view_->list().Count(), 0);
  Refresh();
  EXPECT_EQ(view_->list().Count(), 0);
  EXPECT_EQ(view_->messages().Count(source_.convId), 0u);
}

TEST_F(MessageViewTest, ObjectsAreInsertedOnceAndUpdatedInPlace) {
  ElemStru voice = Elem(kElemSound);
  voice.file_time = 7;
  ElemStru picture = Elem(kElemImage);
  picture.thumb_download_param = "{\"thumb\":1}";
  MessageStru voiceMsg = Message(1, 1000, {voice});
  MessageStru pictureMsg = Message(2, 1001, {picture});
  source_.newMessages = {voiceMsg, pictureMsg};
  Refresh();
  Refresh();
  ui::ChatList& list = view_->list();
  EXPECT_EQ(list.ObjectCount(Row(voiceMsg)), 1);
  EXPECT_EQ(list.Object(Row(voiceMsg), 1).caption, u"7 s");
  ASSERT_EQ(source_.downloads.size(), 1u);  // one download, keyed by the item
  EXPECT_EQ(source_.downloads[0].key, list.ItemId(Row(pictureMsg)));
  EXPECT_EQ(list.Object(Row(pictureMsg), 1).image, u"../img/loading.gif");
  now_ += 60;
  Refresh();
  EXPECT_EQ(list.Object(Row(pictureMsg), 1).image, u"../img/loading.gif");
  now_ += 1;
  Refresh();
  EXPECT_EQ(list.Object(Row(pictureMsg), 1).image, u"../img/image_error.png");
  EXPECT_EQ(list.ObjectCount(Row(pictureMsg)), 1);
}

TEST_F(MessageViewTest, DownloadProgressAndTheFinishedFileReachTheItem) {
  ElemStru file = Elem(kElemFile);
  file.file_name = u"notes.abc";
  file.file_size = 2048;
  file.download_param = "{}";
  MessageStru message = Message(1, 1000, {file});
  source_.newMessages = {message};
  Refresh();
  const uint64_t key = source_.downloads.at(0).key;
  EXPECT_EQ(source_.downloads[0].path, u"/nonexistent/recv/notes.abc");
  ui::ChatList& list = view_->list();
  EXPECT_EQ(list.Object(Row(message), 1).image, u"../img/UNKNOW.png");
  source_.transfers[key] = DownloadState{kElemFile, 0, 512, 2048, 0, u""};
  view_->OnTransferChanged(key, 0);
  EXPECT_EQ(list.Object(Row(message), 1).progress, 25);
  source_.transfers[key].downloaded = 1;
  view_->OnTransferChanged(key, 0);
  EXPECT_EQ(list.Object(Row(message), 1).stateImage, u"../img/FileLoaded.png");
  EXPECT_EQ(list.Object(Row(message), 1).progress, -1);
  EXPECT_EQ(list.ObjectCount(Row(message)), 1);
}

TEST_F(MessageViewTest, UploadProgressReachesTheItemUntilTheSendSettles) {
  const std::string path = testing::TempDir() + "message_view_upload.pdf";
  std::ofstream(path) << "x";
  ElemStru file = Elem(kElemFile);
  file.file_name = u"upload.pdf";
  file.file_path = platform::Utf8ToUtf16(path);
  MessageStru sending = Message(0, 1000, {file}, true);
  sending.local_id = 6;
  sending.status = kSending;
  source_.newMessages = {sending};
  Refresh();
  ui::ChatList& list = view_->list();
  const int row = list.Find(6);
  ASSERT_GE(row, 0);
  EXPECT_EQ(list.Object(row, 1).progress, -1);  // nothing reported yet
  source_.uploads[6] = {768, 1024};
  view_->OnTransferChanged(6, 0);
  EXPECT_EQ(list.Object(row, 1).progress, 75);
  source_.uploads.erase(6);
  MessageStru sent = sending;
  sent.status = kSent;
  source_.sent[6] = sent;
  view_->OnTransferChanged(6, 0);
  EXPECT_EQ(list.Object(row, 1).progress, -1);
  EXPECT_EQ(list.Object(row, 1).stateImage, u"../img/FilepUpLoaded.png");
  EXPECT_EQ(list.ObjectCount(row), 1);
}

TEST_F(MessageViewTest, AFailedSendIsMarkedOnItsItem) {
  MessageStru sending = Message(0, 1000, {Text(u"在吗")}, true);
  sending.local_id = 5;
  sending.status = kSending;
  source_.newMessages = {sending};
  Refresh();
  ui::ChatList& list = view_->list();
  int row = list.Find(5);
  ASSERT_GE(row, 0);
  EXPECT_NE(list.Get(row, "List_Item_Edit", "text").find(u"发送中"), WString::npos);
  MessageStru failed = sending;
  failed.status = kSendFailed;
  source_.sent[5] = failed;
  view_->OnTransferChanged(5, 0);
  EXPECT_NE(list.Get(row, "List_Item_Edit", "text").find(u"发送失败"), WString::npos);
}

TEST_F(MessageViewTest, OlderPagesMergeAndOtherConversationsLeaveTheView) {
  for (uint64_t i = 1; i <= 130; ++i) source_.stored.push_back(Message(i, 1000 + i, {Text(u"x")}));
  Refresh();
  EXPECT_EQ(view_->list().Count(), MessageView::kFirstPage);
  EXPECT_TRUE(view_->FetchOlderPage());
  view_->ShowMsgs();
  EXPECT_EQ(view_->list().Count(), 120);
  EXPECT_EQ(view_->list().PlainText(0), u"x");
  EXPECT_EQ(view_->messages().Find(source_.convId)->front().message.unique_id, 11u);
  source_.convId = u"c2c_10003";
  source_.stored.clear();
  Refresh();
  EXPECT_EQ(view_->list().Count(), 0);
}

TEST_F(MessageViewTest, MessagesFarApartGetATimeLine) {
  source_.newMessages = {Message(1, 1000, {Text(u"a")}), Message(2, 1060, {Text(u"b")}),
                         Message(3, 1060 + 301, {Text(u"c")})};
  Refresh();
  ui::ChatList& list = view_->list();
  ASSERT_EQ(list.Count(), 4);
  EXPECT_EQ(list.ItemId(2), 0u);
  EXPECT_EQ(list.TemplateOf(2), "SystemReminder.xml");
}

// The drawing opens through the drawing service with the shown message; a
// copy it fetched shows as downloaded, and its boxes reach the user.
TEST_F(MessageViewTest, ADoubleClickedDrawingOpensThroughTheDrawingService) {
  const std::string copy = testing::TempDir() + "message_view_stairs.dwg";
  std::ofstream(copy) << "AC1032";
  ElemStru drawing = Elem(kElemCustom);
  drawing.drawing.subType = 1;
  drawing.drawing.fileName = u"stairs.dwg";
  drawing.drawing.filePath = u"/home/wang/stairs.dwg";  // the sender's path
  source_.newMessages = {Message(1, 1000, {drawing})};
  Refresh();
  ui::ChatList& list = view_->list();
  EXPECT_EQ(list.Object(0, 1).stateImage, u"");
  ui::Control edit = window_.FindControl("ChatWindow_SendrichEdit");  // any control
  edit.SetUserData(platform::W(std::to_string(list.ItemId(0))));

  source_.drawingOpen = [&](MessageStru& message, host::UserPrompt& prompt) {
    message.elems[0].drawing.filePath = platform::Utf8ToUtf16(copy);
    prompt.ShowMessage(u"打开图纸", u"打开图纸失败!!!");
    return service::drawings::DrawingOpenStep::kOpenFailed;
  };
  view_->OpenAttachment(edit);
  ASSERT_EQ(source_.drawingsOpened.size(), 1u);
  EXPECT_EQ(source_.drawingsOpened[0], u"/home/wang/stairs.dwg");
  EXPECT_EQ(boxes_, std::vector<WString>{u"打开图纸|打开图纸失败!!!"});
  EXPECT_EQ(list.Object(0, 1).stateImage, u"../img/FileLoaded.png");
  EXPECT_EQ(list.ObjectCount(0), 1);

  // A drawing the user just sent opens with the reference its sent message got.
  MessageStru sending = Message(0, 1100, {drawing}, true);
  sending.local_id = 7;
  sending.status = kSending;
  source_.newMessages = {sending};
  Refresh();
  MessageStru sent = sending;
  sent.status = kSent;
  sent.elems[0].drawing.fileRefId = u"ref-7";
  source_.sent[7] = sent;
  view_->OnTransferChanged(7, 0);
  WString openedRef;
  source_.drawingOpen = [&](MessageStru& message, host::UserPrompt&) {
    openedRef = message.elems[0].drawing.fileRefId;
    return service::drawings::DrawingOpenStep::kOpened;
  };
  edit.SetUserData(u"7");
  view_->OpenAttachment(edit);
  EXPECT_EQ(openedRef, u"ref-7");
}

}  // namespace

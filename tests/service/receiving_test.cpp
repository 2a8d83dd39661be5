// New messages from the engine through the window queue into the caches,
// the store and the window's notifications.
#include "imsdk/im_sdk.h"
#include "records/message_summary.h"
#include "service/current_conversation.h"
#include "store/chat_db.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

class ReceivingTest : public ServiceTest {
 protected:
  // A message from `from` into `convId` (the sender's view), handled by the
  // window; the posts it caused are drained too.
  void Receive(const std::string& from, int convType, const std::string& convId,
               const std::string& text) {
    size_t before = CountEvents(kSdkEventNewMessages);
    ASSERT_EQ(engine.SendText(from, convType, convId, text), 0);
    ASSERT_TRUE(PumpUntilEvent(kSdkEventNewMessages, before + 1));
    DrainNow();
  }
  void ReceiveCustom(const std::string& from, const std::string& data) {
    size_t before = CountEvents(kSdkEventNewMessages);
    ASSERT_EQ(engine.SendCustom(from, 1, "10001", data), 0);
    ASSERT_TRUE(PumpUntilEvent(kSdkEventNewMessages, before + 1));
    DrainNow();
  }
  bool SawRefreshMode4() const {
    for (const Seen& seen : SeenOf(msg::kRefreshMessageView)) {
      if (seen.wParam == 4) return true;
    }
    return false;
  }
  std::vector<MessageStru> Stored(const WString& convId) {
    std::vector<MessageStru> rows;
    CChatDb::Instance().QueryCurrentConvMsg(convId, u"10001", 50, rows);
    return rows;
  }
};

TEST_F(ReceivingTest, MessageForTheOpenConversationRefreshesTheView) {
  ASSERT_TRUE(SignIn());
  service::SetCurrentConversation(u"10002", 1);
  ClearSeen();
  Receive("10002", 1, "10001", "hello");
  EXPECT_TRUE(SawRefreshMode4());
  EXPECT_EQ(CountSeen(msg::kUnreadMarker), 1u);
  ASSERT_EQ(tools->NewMessageCount(u"10002"), 1u);
  std::vector<MessageStru> fresh = tools->TakeNewMessages(u"10002");
  ASSERT_EQ(fresh.size(), 1u);
  EXPECT_EQ(fresh[0].elems.at(0).text, u"hello");
  EXPECT_EQ(tools->NewMessageCount(u"10002"), 0u);
}

TEST_F(ReceivingTest, MessageForAnotherConversationOnlyMarksItUnread) {
  ASSERT_TRUE(SignIn());
  service::SetCurrentConversation(u"10003", 1);
  ClearSeen();
  Receive("10002", 1, "10001", "hello");
  EXPECT_EQ(CountSeen(msg::kUnreadMarker), 1u);
  EXPECT_FALSE(SawRefreshMode4());
  EXPECT_TRUE(tools->IsUnread(u"10002"));
  EXPECT_EQ(window.Flashes(), 1);
}

TEST_F(ReceivingTest, NoConversationIsOpenBeforeTheFirstIsChosen) {
  EXPECT_EQ(service::CurrentConvId(), u"error");
  ASSERT_TRUE(SignIn());
  ClearSeen();
  Receive("10002", 1, "10001", "hello");
  EXPECT_FALSE(SawRefreshMode4());
}

TEST_F(ReceivingTest, UnknownConversationAsksForTheListOnce) {
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(tools->RecentCount(), 0u);
  ClearSeen();
  Receive("10002", 1, "10001", "first");
  EXPECT_EQ(SeenOf(msg::kConversationLogoChanged).size(), 1u);
  EXPECT_EQ(SeenOf(msg::kConversationLogoChanged)[0].first, u"10002");
  ASSERT_TRUE(PumpUntilEvent(kSdkEventConversationList));
  size_t requests = traces.Count("获取最近联系人的会话列表 开始!!!");
  Receive("10002", 1, "10001", "second");
  EXPECT_EQ(traces.Count("获取最近联系人的会话列表 开始!!!"), requests);
  EXPECT_EQ(SeenOf(msg::kConversationLogoChanged).size(), 1u);
  std::vector<RecentConversation> recent = tools->RecentConversations();
  ASSERT_EQ(recent.size(), 1u);
  EXPECT_EQ(recent[0].info.conv_id, u"10002");
}

TEST_F(ReceivingTest, ReceivedMessagesAreStoredOnce) {
  ASSERT_TRUE(SignIn());
  Receive("10002", 1, "10001", "kept");
  std::vector<MessageStru> rows = Stored(u"10002");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].elems.at(0).text, u"kept");
  // The same messages fetched again as history do not add rows.
  tools->GetMsgList(u"10002", 1, 20);
  ASSERT_TRUE(PumpUntil([this] { return CountSeen(msg::kMessageListArrived) == 1; }));
  EXPECT_EQ(Stored(u"10002").size(), 1u);
}

TEST_F(ReceivingTest, GroupNameAndOwnerChangesBecomeStoredReminders) {
  std::string group = engine.CreateGroup("10002", "old", {"10001", "10003"});
  ASSERT_FALSE(group.empty());
  ASSERT_TRUE(SignIn());
  WString groupId = platform::Utf8ToUtf16(group);
  service::SetCurrentConversation(groupId, 2);
  ClearSeen();

  size_t before = CountEvents(kSdkEventNewMessages);
  ASSERT_EQ(engine.RenameGroup("10002", group, "新名字"), 0);
  ASSERT_TRUE(PumpUntilEvent(kSdkEventNewMessages, before + 1));
  DrainNow();
  std::vector<Seen> renamed = SeenOf(msg::kConversationNameChanged);
  ASSERT_EQ(renamed.size(), 1u);
  EXPECT_EQ(renamed[0].first, groupId);
  EXPECT_EQ(renamed[0].second, u"新名字");
  EXPECT_TRUE(SawRefreshMode4());

  before = CountEvents(kSdkEventNewMessages);
  ASSERT_EQ(engine.TransferGroupOwner("10002", group, "10001"), 0);
  ASSERT_TRUE(PumpUntilEvent(kSdkEventNewMessages, before + 1));
  DrainNow();

  std::vector<WString> notices;
  for (const MessageStru& row : Stored(groupId)) {
    for (const ElemStru& elem : row.elems) {
      if (elem.elem_type == kElemLocalNotice) notices.push_back(elem.text);
    }
  }
  EXPECT_EQ(notices.size(), 2u);
  EXPECT_NE(std::find(notices.begin(), notices.end(), u"群名称修改为\"新名字\""), notices.end());
  EXPECT_NE(std::find(notices.begin(), notices.end(), u" \"你\" 已成为群主。"), notices.end());
}

TEST_F(ReceivingTest, OwnerChangeToSomeoneElseIsNotAReminder) {
  std::string group = engine.CreateGroup("10002", "g", {"10001", "10003"});
  ASSERT_TRUE(SignIn());
  size_t before = CountEvents(kSdkEventNewMessages);
  ASSERT_EQ(engine.TransferGroupOwner("10002", group, "10003"), 0);
  ASSERT_TRUE(PumpUntilEvent(kSdkEventNewMessages, before + 1));
  DrainNow();
  for (const MessageStru& row : Stored(platform::Utf8ToUtf16(group))) {
    for (const ElemStru& elem : row.elems) EXPECT_NE(elem.elem_type, kElemLocalNotice);
  }
}

TEST_F(ReceivingTest, DrawingPayloadsPostTheirNotices) {
  ASSERT_TRUE(SignIn());
  struct Case {
    const char* payload;
    unsigned expected;  // posted message, 0 for none of the two
  };
  const Case cases[] = {
      {R"({"msgType":2,"data":{"subType":0,"instruct":2,"content":"x"}})", msg::kDrawingSyncNotice},
      {R"({"msgType":2,"data":{"subType":0,"instruct":4,"content":"x"}})", msg::kDrawingSyncNotice},
      {R"({"msgType":2,"data":{"subType":0,"instruct":3,"content":"x"}})", 0},
      {R"({"msgType":1,"data":{"subType":1,"fileName":"a.dwg"}})", msg::kReloadGroupsFromHost},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.payload);
    ClearSeen();
    ReceiveCustom("10002", c.payload);
    EXPECT_EQ(CountSeen(msg::kDrawingSyncNotice), c.expected == msg::kDrawingSyncNotice ? 1u : 0u);
    EXPECT_EQ(CountSeen(msg::kReloadGroupsFromHost),
              c.expected == msg::kReloadGroupsFromHost ? 1u : 0u);
  }
}

TEST_F(ReceivingTest, SyncInstructionsAreNeitherShownNorStored) {
  ASSERT_TRUE(SignIn());
  Receive("10002", 1, "10001", "before");
  (void)tools->TakeNewMessages(u"10002");
  ClearSeen();
  ReceiveCustom("10002", R"({"msgType":3,"data":{"subType":0}})");
  EXPECT_EQ(tools->NewMessageCount(u"10002"), 0u);
  EXPECT_EQ(CountSeen(msg::kUnreadMarker), 0u);
  EXPECT_EQ(Stored(u"10002").size(), 1u);
}

TEST_F(ReceivingTest, UnparsableTextIsDroppedWithATrace) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  SdkEventRecord record;
  record.kind = kSdkEventNewMessages;
  record.text = "[{\"message_conv_id\": ";
  record.flag1 = record.flag2 = 1;
  tools->OnRecvNewMsg(&record);
  EXPECT_TRUE(traces.Contains("****** CChatTools::OnRecvNewMsg return ******"));
  DrainNow();
  EXPECT_TRUE(seen_.empty());
  tools->OnRecvNewMsg(nullptr);  // nothing to do, no crash
}

TEST_F(ReceivingTest, NewMessageCallbackCopiesTheTextByteForByte) {
  const std::string text = "[{\"message_conv_id\":\"a\\u0000b\",\"x\":\"\xe4\xbd\xa0\"}]";
  CChatTools::TIMAddRecvNewMsgCallbackFunc(text.c_str(), tools.get());
  CChatTools::TIMAddRecvNewMsgCallbackFunc(text.c_str(), nullptr);  // no user data: nothing
  std::vector<platform::WindowMessage> posted = window.queue.TakeAll();
  ASSERT_EQ(posted.size(), 1u);
  ASSERT_EQ(posted[0].msg, msg::kSdkEvent);
  auto record =
      std::unique_ptr<SdkEventRecord>(reinterpret_cast<SdkEventRecord*>(posted[0].wParam));
  EXPECT_EQ(record->kind, kSdkEventNewMessages);
  EXPECT_EQ(record->text, text);
  EXPECT_EQ(record->flag1, 1);
  EXPECT_EQ(record->flag2, 1);
  EXPECT_EQ(record->recent_list_flag, 0);
}

TEST_F(ReceivingTest, MessageListResultPostsOnlyOnSuccess) {
  CChatTools::TIMMsgGetMsgListFunc(TIM_ERR_NETWORK, "down", "[]", tools.get());
  CChatTools::TIMMsgGetMsgListFunc(0, "", "[]", nullptr);
  EXPECT_EQ(window.queue.Pending(), 0u);
  CChatTools::TIMMsgGetMsgListFunc(0, "", "[1]", tools.get());
  DrainNow();
  ASSERT_EQ(SeenOf(msg::kMessageListArrived).size(), 1u);
  EXPECT_EQ(SeenOf(msg::kMessageListArrived)[0].text, "[1]");
}

TEST_F(ReceivingTest, FetchedGroupHistoryTakesTheNewMessagePath) {
  std::string group = engine.CreateGroup("10002", "g", {"10001"});
  ASSERT_EQ(engine.SendText("10002", 2, group, "one"), 0);
  ASSERT_TRUE(SignIn());
  WString groupId = platform::Utf8ToUtf16(group);
  // Pushed messages of the session before the sign-in are not delivered
  // again; what the history holds comes through the message list.
  (void)tools->TakeNewMessages(groupId, 1000);
  tools->GetMsgList(groupId, 2, 20);
  ASSERT_TRUE(PumpUntil([this] { return CountSeen(msg::kMessageListArrived) == 1; }));
  DrainNow();
  std::vector<MessageStru> fresh = tools->TakeNewMessages(groupId, 1000);
  bool found = false;
  for (const MessageStru& m : fresh) {
    for (const ElemStru& e : m.elems) found = found || e.text == u"one";
  }
  EXPECT_TRUE(found);
}

}  // namespace
}  // namespace service_test

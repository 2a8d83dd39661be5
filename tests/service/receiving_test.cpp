// New messages from the engine through the window queue into the caches,
// the store and the window's notifications.
#include "imsdk/im_sdk.h"
#include "records/message_records.h"
#include "service/current_conversation.h"
#include "service/posting.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

using ReceivingTest = ServiceTest;

TEST_F(ReceivingTest, PeerMessageRefreshesOnlyTheOpenConversation) {
  ASSERT_TRUE(SignIn());
  const struct {
    const char16_t* open;  // nullptr: none chosen yet ("error")
    bool refreshed;
  } cases[] = {{nullptr, false}, {u"10003", false}, {u"10002", true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.refreshed);
    if (c.open != nullptr) service::SetCurrentConversation(c.open, 1);
    (void)tools->TakeNewMessages(u"10002");
    ClearSeen();
    const int flashes = window.flashes;
    ASSERT_TRUE(HandlePushed(engine.SendText("10002", 1, "10001", "hello")));
    EXPECT_EQ(CountSeen(msg::kRefreshMessageView, 4), c.refreshed ? 1u : 0u);
    EXPECT_EQ(CountSeen(msg::kUnreadMarker), 1u);
    EXPECT_TRUE(tools->IsUnread(u"10002"));
    EXPECT_EQ(window.flashes, flashes + 1);
    std::vector<MessageStru> fresh = tools->TakeNewMessages(u"10002");
    ASSERT_EQ(fresh.size(), 1u);
    EXPECT_EQ(fresh[0].elems.at(0).text, u"hello");
  }
}

TEST_F(ReceivingTest, UnknownConversationAsksForTheListOnce) {
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(tools->RecentCount(), 0u);
  ClearSeen();
  ASSERT_TRUE(HandlePushed(engine.SendText("10002", 1, "10001", "first")));
  ASSERT_EQ(SeenOf(msg::kConversationLogoChanged).size(), 1u);
  EXPECT_EQ(SeenOf(msg::kConversationLogoChanged)[0].first, u"10002");
  ASSERT_TRUE(PumpUntilEvent(kSdkEventConversationList));
  const char* kRequest = "获取最近联系人的会话列表 开始!!!";
  size_t requests = traces.Count(kRequest);
  ASSERT_TRUE(HandlePushed(engine.SendText("10002", 1, "10001", "second")));
  EXPECT_EQ(traces.Count(kRequest), requests);
  EXPECT_EQ(SeenOf(msg::kConversationLogoChanged).size(), 1u);
  std::vector<RecentConversation> recent = tools->RecentConversations();
  ASSERT_EQ(recent.size(), 1u);
  EXPECT_EQ(recent[0].info.conv_id, u"10002");
}

TEST_F(ReceivingTest, MessagesAreStoredOnceAndFetchedHistoryTakesTheSamePath) {
  std::string group = engine.CreateGroup("10002", "g", {"10001"});
  ASSERT_EQ(engine.SendText("10002", 2, group, "before sign-in"), 0);
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(HandlePushed(engine.SendText("10002", 1, "10001", "kept")));
  std::vector<MessageStru> rows = StoredRows(u"10002");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].elems.at(0).text, u"kept");

  const WString groupId = platform::Utf8ToUtf16(group);
  for (const WString& convId : {WString(u"10002"), groupId}) {
    (void)tools->TakeNewMessages(convId, 1000);
    ClearSeen();
    tools->GetMsgList(convId, convId == groupId ? 2 : 1, 20);
    ASSERT_TRUE(PumpUntil([this] { return CountSeen(msg::kMessageListArrived) == 1; }));
    DrainNow();
    EXPECT_FALSE(tools->TakeNewMessages(convId, 1000).empty());
  }
  EXPECT_EQ(StoredRows(u"10002").size(), 1u);
  EXPECT_EQ(StoredRows(groupId).size(), 1u);
}

TEST_F(ReceivingTest, GroupNameAndOwnerChangesBecomeStoredReminders) {
  std::string group = engine.CreateGroup("10002", "old", {"10001", "10003"});
  ASSERT_TRUE(SignIn());
  WString groupId = platform::Utf8ToUtf16(group);
  service::SetCurrentConversation(groupId, 2);
  ClearSeen();
  ASSERT_TRUE(HandlePushed(engine.RenameGroup("10002", group, "新名字")));
  std::vector<Seen> renamed = SeenOf(msg::kConversationNameChanged);
  ASSERT_EQ(renamed.size(), 1u);
  EXPECT_EQ(renamed[0].first, groupId);
  EXPECT_EQ(renamed[0].second, u"新名字");
  EXPECT_GE(CountSeen(msg::kRefreshMessageView, 4), 1u);
  // Only an owner change to the user is a reminder.
  ASSERT_TRUE(HandlePushed(engine.TransferGroupOwner("10002", group, "10003")));
  ASSERT_TRUE(HandlePushed(engine.TransferGroupOwner("10003", group, "10001")));

  std::vector<WString> notices;
  for (const MessageStru& row : StoredRows(groupId)) {
    for (const ElemStru& elem : row.elems) {
      if (elem.elem_type == kElemLocalNotice) notices.push_back(elem.text);
    }
  }
  std::sort(notices.begin(), notices.end());
  EXPECT_EQ(notices, (std::vector<WString>{u" \"你\" 已成为群主。", u"群名称修改为\"新名字\""}));
}

TEST_F(ReceivingTest, UnparsableTextIsDroppedWithATrace) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  SdkEventRecord record{kSdkEventNewMessages, "[{\"message_conv_id\": ", 1, 1};
  tools->OnRecvNewMsg(&record);
  tools->OnRecvNewMsg(nullptr);
  EXPECT_TRUE(traces.Contains("****** CChatTools::OnRecvNewMsg return ******"));
  DrainNow();
  EXPECT_TRUE(seen_.empty());
}

// What each callback posts as 3024: the kind, the text byte for byte, the flags.
TEST_F(ReceivingTest, EventCallbacksCopyTheirTextIntoTheRecord) {
  using Callback = std::function<void(const char*, void*)>;
  const struct {
    Callback callback;
    uint32_t kind;
    uint8_t flag1, flag2;
  } cases[] = {
      {CChatTools::TIMAddRecvNewMsgCallbackFunc, kSdkEventNewMessages, 1, 1},
      {CChatTools::TIMSetFriendAddRequestCallbackFunc, kSdkEventFriendAddRequest, 0, 0},
      {[](const char* j, void* u) { CChatTools::TIMConvGetConvListFunc(0, "", j, u); },
       kSdkEventConversationList, 0, 0},
      {[](const char* j, void* u) {
         CChatTools::TIMFriendshipGetFriendProfileListFunc(0, "", j, u);
       },
       kSdkEventFriendProfileList, 0, 0},
  };
  const std::string text = "[{\"message_conv_id\":\"a\\u0000b\",\"x\":\"\xe4\xbd\xa0\"}]";
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind);
    c.callback(text.c_str(), tools.get());
    c.callback(text.c_str(), nullptr);  // no user data: nothing
    std::vector<platform::WindowMessage> posted = window.queue.TakeAll();
    ASSERT_EQ(posted.size(), 1u);
    ASSERT_EQ(posted[0].msg, msg::kSdkEvent);
    const SdkEventRecord record = service::AdoptPosted<msg::kSdkEvent>(posted[0].wParam)->value;
    EXPECT_EQ(record.kind, c.kind);
    EXPECT_EQ(record.text, text);
    EXPECT_EQ(record.flag1, c.flag1);
    EXPECT_EQ(record.flag2, c.flag2);
    EXPECT_EQ(record.recent_list_flag, 0);
  }
  // Failed results post nothing.
  CChatTools::TIMConvGetConvListFunc(TIM_ERR_NETWORK, "down", "[]", tools.get());
  CChatTools::TIMMsgGetMsgListFunc(TIM_ERR_NETWORK, "down", "[]", tools.get());
  EXPECT_EQ(window.queue.Pending(), 0u);
}

}  // namespace
}  // namespace service_test

// Drawing-sync messages: what received payloads ask of the host, and the
// host's payloads sent through sendChatDrawingMsg from the host's thread.
#include <atomic>
#include <thread>

#include "host/local/local_host.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

const char* const kSyncInstruction = R"({"msgType":3,"data":{"subType":0}})";

class DrawingSyncTest : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    host_.Install();  // before sign-in: start-up registers the module's sender
  }
  void TearDown() override {
    host_.Uninstall();
    ServiceTest::TearDown();
  }
  void ShareConversation(const char16_t* convId) {
    SharedSessionInfo session;
    session.sessionKey = convId;
    session.groupId = 1;
    session.drawingId = 2;
    host_.SetSharedSession(session);
  }
  host::local::LocalHost host_{testing::TempDir() + "service_send_sync_space"};
};

// What a payload pushed by the peer 10002 causes: host calls, posts, and
// whether the message is listed and stored.
TEST_F(DrawingSyncTest, PushedPayloadsReachTheHostOnlyForTheSharedConversation) {
  const struct {
    const char16_t* shared;
    std::string payload;
    size_t syncs;
    int32_t update;  // the chat drawing's subType, 0 none
    size_t notices;  // 3208
    size_t reloads;  // 3181
    size_t listed;
  } cases[] = {
      {u"10002", kSyncInstruction, 1, 0, 0, 0, 0},
      {u"10002", R"({"msgType":3,"data":{"subType":1}})", 0, 0, 0, 0, 0},
      {u"10003", kSyncInstruction, 0, 0, 0, 0, 0},
      {u"10002", R"({"msgType":2,"data":{"subType":2,"instruct":2,"content":"c"}})", 0, 2, 1, 0, 1},
      {u"10002", R"({"msgType":2,"data":{"subType":3,"instruct":4,"content":"c"}})", 0, 3, 1, 0, 1},
      {u"10002", R"({"msgType":2,"data":{"subType":4,"instruct":3}})", 0, 4, 0, 0, 1},
      {u"10002", R"({"msgType":2,"data":{"subType":5}})", 0, 5, 0, 0, 1},
      {u"10003", R"({"msgType":2,"data":{"subType":5}})", 0, 0, 0, 0, 1},
      {u"10002", R"({"msgType":2,"data":{"subType":1,"type":1,"content":"c"}})", 0, 0, 0, 1, 1},
      {u"10002", R"({"msgType":1,"data":{"fileId":5,"subType":0}})", 0, 0, 0, 0, 1},
      {u"10002", R"({"msgType":1,"data":{"fileId":6,"subType":1}})", 0, 0, 0, 1, 1},
  };
  ASSERT_TRUE(SignIn());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.payload);
    ShareConversation(c.shared);
    (void)tools->TakeNewMessages(u"10002");
    ClearSeen();
    const size_t syncsBefore = host_.SentSyncs().size();
    const size_t updatesBefore = host_.DrawingInfoUpdates().size();
    const size_t rowsBefore = StoredRows(u"10002").size();
    ASSERT_TRUE(HandlePushed(engine.SendCustom("10002", 1, "10001", c.payload)));
    EXPECT_EQ(host_.SentSyncs().size() - syncsBefore, c.syncs);
    std::vector<int32_t> updates = host_.DrawingInfoUpdates();
    EXPECT_EQ(std::vector<int32_t>(updates.begin() + updatesBefore, updates.end()),
              c.update == 0 ? std::vector<int32_t>{} : std::vector<int32_t>{c.update});
    EXPECT_EQ(CountSeen(msg::kDrawingSyncNotice), c.notices);
    EXPECT_EQ(CountSeen(msg::kReloadGroupsFromHost), c.reloads);
    EXPECT_EQ(tools->NewMessageCount(u"10002"), c.listed);
    EXPECT_EQ(CountSeen(msg::kUnreadMarker), c.listed);
    EXPECT_EQ(StoredRows(u"10002").size(), rowsBefore + c.listed);
  }
  // What the host got is the payload as it travelled.
  ASSERT_EQ(host_.SentSyncs().size(), 1u);
  EXPECT_EQ(ParseJsonText(platform::Utf16ToUtf8(host_.SentSyncs()[0])),
            ParseJsonText(kSyncInstruction));
}

// The flag clear (fetched history): an instruction never reaches the host.
TEST_F(DrawingSyncTest, FetchedHistoryNeverActsOnInstructions) {
  ASSERT_TRUE(SignIn());
  ShareConversation(u"10003");
  ASSERT_TRUE(HandlePushed(engine.SendCustom("10002", 1, "10001", kSyncInstruction)));
  ASSERT_TRUE(host_.SentSyncs().empty());
  ShareConversation(u"10002");
  tools->GetMsgList(u"10002", 1, 20);
  ASSERT_TRUE(PumpUntil([&] { return CountSeen(msg::kMessageListArrived) >= 1; }));
  DrainNow();
  EXPECT_TRUE(host_.SentSyncs().empty());
}

TEST_F(DrawingSyncTest, HostPayloadIsSentToTheSharedConversation) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  // No shared conversation: nothing to send to.
  EXPECT_FALSE(host_.SendDrawingMsgThroughModule(u"{}"));
  EXPECT_TRUE(log.CallsOf("TIMMsgSendNewMsg").empty());

  ShareConversation(u"10002");
  const WString payload = u"{\"msgType\":3,\"data\":{\"subType\":0,\"note\":\"图\"}}";
  ASSERT_TRUE(host_.SendDrawingMsgThroughModule(payload));
  std::vector<Json::Value> calls = log.CallsOf("TIMMsgSendNewMsg");
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0]["conv_id"].asString(), "10002");
  Json::Value message = SdkCallLog::Param(calls[0], "json_msg_param");
  EXPECT_EQ(Keys(message), (std::vector<std::string>{
                               "message_client_time", "message_conv_id", "message_conv_type",
                               "message_elem_array", "message_is_from_self",
                               "message_is_online_msg", "message_sender", "message_server_time"}));
  EXPECT_EQ(message["message_conv_type"].asUInt(), 1u);
  const Json::Value& elem = message["message_elem_array"][0];
  EXPECT_EQ(Keys(elem),
            (std::vector<std::string>{"custom_elem_data", "custom_elem_desc", "custom_elem_ext",
                                      "custom_elem_sound", "elem_type"}));
  EXPECT_EQ(elem["custom_elem_data"].asString(), platform::Utf16ToUtf8(payload));
  // The peer received it.
  ASSERT_TRUE(PumpUntil([&] {
    return engine.LastMessageJson("10002", 1, "10001").find("custom_elem_data") !=
           std::string::npos;
  }));

  // A failed result is traced only.
  ClearSeen();
  engine.FailNextResult("TIMMsgSendNewMsg", 9519);
  ASSERT_TRUE(host_.SendDrawingMsgThroughModule(payload));
  ASSERT_TRUE(PumpUntil([&] { return traces.Contains("自定义消息发送失败！！！"); }));
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kTransferStateChanged), 0u);
  EXPECT_EQ(CountSeen(msg::kRefreshMessageView), 0u);
}

TEST_F(DrawingSyncTest, SignedOutSendIsRefusedAndTraced) {
  ShareConversation(u"10002");
  EXPECT_FALSE(tools->sendChatDrawingMsg(u"{}"));
  EXPECT_TRUE(traces.Contains("TIMMsgSendNewMsg 发送自定义消息失败!!!"));
}

// The host sends from its own thread while the window thread handles the
// peer's messages.
TEST_F(DrawingSyncTest, HostThreadSendsWhileMessagesArrive) {
  ASSERT_TRUE(SignIn());
  ShareConversation(u"10002");
  constexpr int kEach = 30;
  std::atomic<int> accepted{0};
  std::thread hostThread([&] {
    for (int i = 0; i < kEach; ++i) {
      accepted +=
          host_.SendDrawingMsgThroughModule(platform::Utf8ToUtf16(kSyncInstruction)) ? 1 : 0;
    }
  });
  std::thread peer([&] {
    for (int i = 0; i < kEach; ++i) engine.SendText("10002", 1, "10001", "t" + std::to_string(i));
  });
  // The window thread handles the peer's messages meanwhile.
  const size_t eventsBefore = CountEvents(kSdkEventNewMessages);
  bool handled =
      PumpUntil([&] { return CountEvents(kSdkEventNewMessages) >= eventsBefore + kEach; },
                std::chrono::seconds(20));
  hostThread.join();
  peer.join();
  EXPECT_TRUE(handled);
  EXPECT_EQ(accepted.load(), kEach);
  ASSERT_TRUE(PumpUntil([&] { return engine.MessageCount("10002", 1, "10001") >= 2 * kEach; }));
}

}  // namespace
}  // namespace service_test

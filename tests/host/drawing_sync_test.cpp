#include "host/drawing_sync.h"

#include "host_test_support.h"

namespace host::testing {
namespace {

class DrawingSync : public LocalHostTest {
 protected:
  DrawingSync() {
    SharedSessionInfo session;
    session.groupId = 1001;
    session.drawingId = 5;
    session.sessionKey = u"group_1001";
    session.sessionText = u"token";
    host_.SetSharedSession(session);
  }
  static ReceivedDrawingSync Message(uint32_t msgType, int32_t subType,
                                     WString target = u"group_1001") {
    return {std::move(target), msgType, subType, u"2", u"{\"msgType\":2}"};
  }
};

struct RouteCase {
  uint32_t msgType;
  int32_t subType;
  DrawingSyncRoute route;
  const char* hostOperation;  // null: the host is not reached
};

TEST_F(DrawingSync, RoutesByKindAndInstruction) {
  const RouteCase cases[] = {
      {3, 0, DrawingSyncRoute::kSendDrawingSync, "sendDrawingSyncMsg"},
      {3, 1, DrawingSyncRoute::kIgnored, nullptr},
      {2, 2, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 3, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 4, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 5, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 1, DrawingSyncRoute::kApplyDrawingSync, "ApplyDrawingSync"},
      {2, 6, DrawingSyncRoute::kApplyDrawingSync, "ApplyDrawingSync"},
      {2, 0, DrawingSyncRoute::kApplyDrawingSync, "ApplyDrawingSync"},
      {1, 0, DrawingSyncRoute::kIgnored, nullptr},
      {0, 3, DrawingSyncRoute::kIgnored, nullptr},
  };
  for (const RouteCase& c : cases) {
    host_.ClearCalls();
    EXPECT_EQ(HandleReceivedDrawingSync(Message(c.msgType, c.subType)), c.route)
        << c.msgType << "/" << c.subType;
    const auto calls = host_.CallNames();
    if (c.hostOperation == nullptr) {
      EXPECT_TRUE(calls.empty()) << c.msgType << "/" << c.subType;
    } else {
      EXPECT_EQ(calls, (std::vector<std::string>{"GetSessionKey", c.hostOperation}))
          << c.msgType << "/" << c.subType;
    }
  }
  EXPECT_EQ(host_.DrawingInfoUpdates(), (std::vector<int32_t>{2, 3, 4, 5}));
  EXPECT_EQ(host_.SentSyncs(), std::vector<WString>{u"{\"msgType\":2}"});
  const auto applied = host_.AppliedSyncs();
  ASSERT_EQ(applied.size(), 3u);
  EXPECT_EQ(applied[0].first, u"2");
  EXPECT_EQ(applied[0].second, u"{\"msgType\":2}");
}

TEST_F(DrawingSync, OtherConversationIsIgnored) {
  const WString others[] = {u"group_100", u"group_10011", u"GROUP_1001", u""};
  for (const WString& target : others) {
    EXPECT_EQ(HandleReceivedDrawingSync(Message(2, 6, target)), DrawingSyncRoute::kIgnored);
    EXPECT_EQ(HandleReceivedDrawingSync(Message(3, 0, target)), DrawingSyncRoute::kIgnored);
  }
  EXPECT_TRUE(host_.AppliedSyncs().empty());
  EXPECT_TRUE(host_.SentSyncs().empty());
}

TEST_F(DrawingSync, KeyWithCharactersOutsideTheBmpComparesWhole) {
  SharedSessionInfo session;
  session.sessionKey = u"群\U0001F600组";
  host_.SetSharedSession(session);
  EXPECT_EQ(HandleReceivedDrawingSync(Message(2, 2, u"群\U0001F600组")),
            DrawingSyncRoute::kUpdateDrawingInfo);
  EXPECT_EQ(HandleReceivedDrawingSync(Message(2, 2, u"群\U0001F601组")),
            DrawingSyncRoute::kIgnored);
}

TEST_F(DrawingSync, HostFailuresAreTracedOnly) {
  host_.FailOperation("sendDrawingSyncMsg");
  host_.FailOperation("updateChatDrawingInfo");
  HandleReceivedDrawingSync(Message(3, 0));
  HandleReceivedDrawingSync(Message(2, 4));
  EXPECT_EQ(trace_.Count("调用sendDrawingSyncMsg失败!!!!!!!!"), 1u);
  EXPECT_EQ(trace_.Count("调用updateChatDrawingInfo失败!!!!!!!!"), 1u);
}

}  // namespace
}  // namespace host::testing

// The shared-session side: drawing sync, log-out, start-up registration,
// feature use and the upload worker.
#include <fstream>
#include <thread>

#include "host/account_id.h"
#include "host/drawing_sync.h"
#include "host/feature_use.h"
#include "host/shared_session.h"
#include "host/startup_registration.h"
#include "host/upload_worker.h"
#include "host_test_support.h"
#include "platform/module_workers.h"

namespace host::testing {
namespace {

using namespace std::chrono_literals;

class SessionPaths : public LocalHostTest {
 protected:
  void OpenSession(WString key = u"group_1001") {
    host_.SetSharedSession({1001, 5, std::move(key), u"token-ä", {}, 0, 0});
  }
  static ReceivedDrawingSync Message(uint32_t msgType, int32_t subType,
                                     WString target = u"group_1001") {
    return {std::move(target), msgType, subType, u"2", u"{\"msgType\":2}"};
  }
  std::unique_ptr<UploadTask> Task(const std::filesystem::path& path,
                                   std::shared_ptr<UploadOutcome> outcome = nullptr) {
    return std::make_unique<UploadTask>(UploadTask{
        window_.handle(), platform::Utf8ToUtf16(path.string()), 1001, 7, std::move(outcome)});
  }
  std::filesystem::path Drawing() {
    std::ofstream(space_ / "plan.dwg") << "drawing";
    return space_ / "plan.dwg";
  }
  platform::QueuedWindow window_;
};

TEST_F(SessionPaths, DrawingSyncRoutesByKindAndInstruction) {
  OpenSession();
  struct {
    uint32_t msgType;
    int32_t subType;
    DrawingSyncRoute route;
    const char* hostOperation;  // null: the host is not reached
  } const cases[] = {
      {3, 0, DrawingSyncRoute::kSendDrawingSync, "sendDrawingSyncMsg"},
      {3, 1, DrawingSyncRoute::kIgnored, nullptr},
      {2, 2, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 3, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 4, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 5, DrawingSyncRoute::kUpdateDrawingInfo, "updateChatDrawingInfo"},
      {2, 1, DrawingSyncRoute::kApplyDrawingSync, "ApplyDrawingSync"},
      {2, 6, DrawingSyncRoute::kApplyDrawingSync, "ApplyDrawingSync"},
      {1, 0, DrawingSyncRoute::kIgnored, nullptr},
  };
  for (const auto& c : cases) {
    host_.ClearCalls();
    EXPECT_EQ(HandleReceivedDrawingSync(Message(c.msgType, c.subType)), c.route)
        << c.msgType << "/" << c.subType;
    EXPECT_EQ(host_.CallNames(),
              (c.hostOperation ? Strings{"GetSessionKey", c.hostOperation} : Strings{}))
        << c.msgType << "/" << c.subType;
  }
  EXPECT_EQ(host_.DrawingInfoUpdates(), (std::vector<int32_t>{2, 3, 4, 5}));
  EXPECT_EQ(host_.SentSyncs(), std::vector<WString>{u"{\"msgType\":2}"});
  const auto applied = host_.AppliedSyncs();
  ASSERT_EQ(applied.size(), 2u);
  EXPECT_EQ(applied[0], (std::pair<WString, WString>{u"2", u"{\"msgType\":2}"}));
}

TEST_F(SessionPaths, DrawingSyncForAnotherConversationIsIgnoredAndFailuresTraced) {
  OpenSession(u"群\U0001F600组");
  for (const char16_t* target :
       {u"群\U0001F601组", u"群\U0001F600", u"群\U0001F600组x", u"group_1001", u""}) {
    EXPECT_EQ(HandleReceivedDrawingSync(Message(2, 6, target)), DrawingSyncRoute::kIgnored);
    EXPECT_EQ(HandleReceivedDrawingSync(Message(3, 0, target)), DrawingSyncRoute::kIgnored);
  }
  EXPECT_TRUE(host_.AppliedSyncs().empty());
  EXPECT_TRUE(host_.SentSyncs().empty());
  host_.FailOperation("sendDrawingSyncMsg");
  host_.FailOperation("updateChatDrawingInfo");
  EXPECT_EQ(HandleReceivedDrawingSync(Message(3, 0, u"群\U0001F600组")),
            DrawingSyncRoute::kSendDrawingSync);
  HandleReceivedDrawingSync(Message(2, 4, u"群\U0001F600组"));
  EXPECT_EQ(trace_.Count("调用sendDrawingSyncMsg失败!!!!!!!!"), 1u);
  EXPECT_EQ(trace_.Count("调用updateChatDrawingInfo失败!!!!!!!!"), 1u);
}

TEST_F(SessionPaths, LogoutLeavesAnOpenSessionThenEndsIt) {
  EXPECT_FALSE(LeaveSharedSessionAtLogout());
  EXPECT_EQ(host_.CallNames(), Strings{"IsInSharedSession"});
  OpenSession();
  host_.ClearCalls();
  EXPECT_TRUE(LeaveSharedSessionAtLogout());
  EXPECT_EQ(host_.CallNames(),
            (Strings{"IsInSharedSession", "GetSessionGroupId", "GetSessionDrawingId",
                     "GetSessionText", "LeaveSharedSession", "EndSharedSession"}));
  EXPECT_EQ(host_.Calls()[4].args, "1001,5,token-ä");
  EXPECT_FALSE(HostSystem::instance()->GetAppService()->IsInSharedSession());
}

TEST_F(SessionPaths, StartupRegistersSenderThenProviderAndTheHostCanUseThem) {
  host_.SetServicesAvailable(true, false);  // without the app service nothing is registered
  EXPECT_FALSE(RegisterModuleCallbacks([](const WString&) { return true; }, nullptr));
  host_.SetServicesAvailable(true, true);
  EXPECT_FALSE(host_.SendDrawingMsgThroughModule(u"x"));
  host_.ClearCalls();
  std::vector<WString> sent;
  auto send = [&](const WString& payload) { return sent.push_back(payload), true; };
  EXPECT_TRUE(RegisterModuleCallbacks(send, [](std::vector<RecentConversationEntry>* list) {
    if (list != nullptr) list->push_back({u"Team", u"group_1001", 2});
  }));
  EXPECT_EQ(host_.CallNames(), (Strings{"SetDrawingMsgSender", "SetHostNotifyCallback"}));
  EXPECT_TRUE(host_.SendDrawingMsgThroughModule(u"{\"msgType\":3}"));
  EXPECT_EQ(sent, std::vector<WString>{u"{\"msgType\":3}"});
  const auto recent = host_.CollectRecentConversations();
  ASSERT_EQ(recent.size(), 1u);
  EXPECT_EQ(recent[0].conversationId, u"group_1001");
}

TEST_F(SessionPaths, FeatureUseEventsCarryTheirTexts) {
  for (int feature = 0; feature < 5; ++feature) RecordFeatureUse(static_cast<FeatureUse>(feature));
  EXPECT_EQ(host_.FeatureUses(),
            (std::vector<WString>{u"IM-AddFriend", u"IM-CreateGroup", u"IM-SendDrawing",
                                  u"IM-ShareChat", u"IM-CloudManage"}));
  host_.SetServicesAvailable(true, false);
  RecordFeatureUse(FeatureUse::kAddFriend);
  EXPECT_EQ(host_.FeatureUses().size(), 5u);
  EXPECT_TRUE(trace_.Contains("指针为空"));
}

TEST_F(SessionPaths, UploadWorkerPostsOneOrZeroFromItsOwnThread) {
  const auto drawing = Drawing();
  for (const auto& [path, result] : {std::pair{drawing, 1u}, {space_ / "missing.dwg", 0u}}) {
    auto outcome = std::make_shared<UploadOutcome>();
    ASSERT_TRUE(StartUploadWorker(Task(path, outcome)));
    platform::ModuleWorkers::Instance().WaitIdle();
    auto posted = window_.WaitFor(1s);
    ASSERT_TRUE(posted);
    EXPECT_EQ(posted->msg, 1025u);
    EXPECT_EQ(posted->wParam, result);
    EXPECT_EQ(posted->lParam, 0);
    EXPECT_EQ(host_.Calls().back().args, path.string() + ",description,1001,7");
    // What the host reported of the stored drawing waits for the window.
    std::optional<SpaceFileRef> stored = outcome->Get();
    ASSERT_EQ(stored.has_value(), result == 1u);
    if (stored) {
      EXPECT_EQ(stored->drawingId, 1);
      EXPECT_EQ(stored->drawingRef, u"1001/1");
    }
  }
  EXPECT_TRUE(std::filesystem::exists(space_ / "space" / "1001" / "7" / "plan.dwg"));
}

TEST_F(SessionPaths, UploadWorkersAtOnceEachReportAndAGoneWindowStillFreesTheTask) {
  const auto drawing = Drawing();
  for (int i = 0; i < 8; ++i) ASSERT_TRUE(StartUploadWorker(Task(drawing)));
  platform::ModuleWorkers::Instance().WaitIdle();
  auto posted = window_.TakeAll();
  ASSERT_EQ(posted.size(), 8u);
  for (const auto& message : posted) EXPECT_EQ(message.wParam, 1u);
  window_.Destroy();  // a task left behind fails under the leak checker
  ASSERT_TRUE(StartUploadWorker(Task(drawing)));
  platform::ModuleWorkers::Instance().WaitIdle();
  EXPECT_TRUE(trace_.Contains("window gone"));
}

TEST(AccountId, OnlyDecimalIdsThatFitNameAnAccount) {
  EXPECT_EQ(AccountIdOfImUser(u"10001"), 10001);
  EXPECT_EQ(AccountIdOfImUser(u"999999999"), 999999999);
  // Ten digits fit as long as the host's 32-bit id does.
  EXPECT_EQ(AccountIdOfImUser(u"1000000000"), 1000000000);
  EXPECT_EQ(AccountIdOfImUser(u"2147483647"), 2147483647);
  for (const char16_t* id : {u"", u"-1", u"12a", u"@TGS#group1", u"2147483648", u"9999999999",
                             u"10000000000", u"１２"}) {
    EXPECT_FALSE(AccountIdOfImUser(id)) << platform::Utf16ToUtf8(id);
  }
}

}  // namespace
}  // namespace host::testing

#include "host/feature_use.h"
#include "host/shared_session.h"
#include "host/startup_registration.h"
#include "host_test_support.h"

namespace host::testing {
namespace {

using SessionAndStartup = LocalHostTest;

TEST_F(SessionAndStartup, LogoutLeavesAnOpenSessionThenEndsIt) {
  SharedSessionInfo session;
  session.groupId = 1001;
  session.drawingId = 5;
  session.sessionKey = u"group_1001";
  session.sessionText = u"token-ä";
  host_.SetSharedSession(session);
  host_.ClearCalls();
  EXPECT_TRUE(LeaveSharedSessionAtLogout());
  EXPECT_EQ(host_.CallNames(), (std::vector<std::string>{
                                   "IsInSharedSession", "GetSessionGroupId", "GetSessionDrawingId",
                                   "GetSessionText", "LeaveSharedSession", "EndSharedSession"}));
  const auto calls = host_.Calls();
  EXPECT_EQ(calls[4].args, "1001,5,token-ä");
  EXPECT_FALSE(HostSystem::instance()->GetAppService()->IsInSharedSession());
}

TEST_F(SessionAndStartup, LogoutWithoutSessionLeavesNothing) {
  EXPECT_FALSE(LeaveSharedSessionAtLogout());
  EXPECT_EQ(host_.CallNames(), std::vector<std::string>{"IsInSharedSession"});
}

TEST_F(SessionAndStartup, StartupRegistersSenderThenProviderAndTheHostCanUseThem) {
  std::vector<WString> sent;
  EXPECT_TRUE(RegisterModuleCallbacks(
      [&](const WString& payload) {
        sent.push_back(payload);
        return true;
      },
      [](std::vector<RecentConversationEntry>* list) {
        if (list != nullptr) list->push_back({u"Team", u"group_1001", 2});
      }));
  EXPECT_EQ(host_.CallNames(),
            (std::vector<std::string>{"SetDrawingMsgSender", "SetHostNotifyCallback"}));
  EXPECT_TRUE(host_.SendDrawingMsgThroughModule(u"{\"msgType\":3}"));
  EXPECT_EQ(sent, std::vector<WString>{u"{\"msgType\":3}"});
  const auto recent = host_.CollectRecentConversations();
  ASSERT_EQ(recent.size(), 1u);
  EXPECT_EQ(recent[0].conversationId, u"group_1001");
}

TEST_F(SessionAndStartup, StartupWithoutAppServiceRegistersNothing) {
  host_.SetServicesAvailable(true, false);
  EXPECT_FALSE(RegisterModuleCallbacks([](const WString&) { return true; }, nullptr));
  host_.SetServicesAvailable(true, true);
  EXPECT_FALSE(host_.SendDrawingMsgThroughModule(u"x"));
}

TEST_F(SessionAndStartup, FeatureUseEventsCarryTheirTexts) {
  for (FeatureUse feature :
       {FeatureUse::kAddFriend, FeatureUse::kCreateGroup, FeatureUse::kSendDrawing,
        FeatureUse::kShareChat, FeatureUse::kCloudManage}) {
    RecordFeatureUse(feature);
  }
  EXPECT_EQ(host_.FeatureUses(),
            (std::vector<WString>{u"IM-AddFriend", u"IM-CreateGroup", u"IM-SendDrawing",
                                  u"IM-ShareChat", u"IM-CloudManage"}));
  host_.SetServicesAvailable(true, false);
  RecordFeatureUse(FeatureUse::kAddFriend);
  EXPECT_EQ(host_.FeatureUses().size(), 5u);
  EXPECT_TRUE(trace_.Contains("指针为空"));
}

}  // namespace
}  // namespace host::testing

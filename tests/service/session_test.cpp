// Sessions never mix: what belongs to an ended session is dropped, a late or
// refused sign-in leaves the signed-in user's files alone, ClearResource
// empties every cache; and the receive and send paths that sessions touch.
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <string>
#include <thread>

#include "host/local/local_host.h"
#include "service/current_conversation.h"
#include "service/module_counters.h"
#include "store/chat_db.h"
#include "tests/service/sdk_seam.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

class SessionTest : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    sdk_seam::Reset();
    host_.Install();
    for (int32_t id : {10001, 10002, 10003}) {
      host::local::LocalAccount account;
      account.id = id;
      host_.AddAccount(account);
    }
    host_.SignIn(10001);
  }
  void TearDown() override {
    sdk_seam::Reset();
    ServiceTest::TearDown();
    host_.Uninstall();
  }
  // Waits until something is posted, without handling it.
  bool WaitQueued() {
    for (int i = 0; i < 500 && window.queue.Pending() == 0; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return window.queue.Pending() != 0;
  }
  std::optional<RecentConversation> Recent(const WString& convId) const {
    for (const RecentConversation& recent : tools->RecentConversations()) {
      if (recent.info.conv_id == convId) return recent;
    }
    return std::nullopt;
  }
  static std::vector<WString> Texts(const std::vector<MessageStru>& messages) {
    std::vector<WString> texts;
    for (const MessageStru& m : messages) texts.push_back(m.elems.empty() ? u"" : m.elems[0].text);
    return texts;
  }
  // Runs `call` on another thread; a call that does not come back in time
  // (a deadlock) ends the test binary instead of hanging it.
  static void WithinSeconds(const std::function<void()>& call) {
    std::promise<void> done;
    std::thread([&] {
      call();
      done.set_value();
    }).detach();
    if (done.get_future().wait_for(std::chrono::seconds(5)) != std::future_status::ready) {
      ADD_FAILURE() << "the call did not return";
      std::_Exit(1);
    }
  }

  host::local::LocalHost host_{testing::TempDir() + "service_session_space"};
};

TEST_F(SessionTest, AccountSwitchInOneHostHandlerKeepsTheFirstUsersMessageOut) {
  ASSERT_TRUE(SignIn("10001"));
  ClearSeen();
  ASSERT_EQ(engine.SendText("10002", kConvC2C, "10001", "for 10001 only"), 0);
  ASSERT_TRUE(WaitQueued());  // posted for 10001, not yet handled
  // LogOutIm and LoginIm of another user in one host handler.
  service::InternalLogout(*tools, true);
  ASSERT_TRUE(SignIn("10003"));
  DrainNow();
  EXPECT_EQ(CountEvents(kSdkEventNewMessages), 1u);
  EXPECT_TRUE(tools->StoredMessages(u"10002", 10).empty());
  EXPECT_FALSE(tools->HasConversation(u"10002"));
  EXPECT_FALSE(Recent(u"10002"));
  EXPECT_EQ(tools->NewMessageCount(u"10002"), 0u);
  EXPECT_TRUE(tools->UnreadIds().empty());
}

TEST_F(SessionTest, ClearResourceEmptiesEveryCache) {
  ASSERT_EQ(engine.CreateGroup("10002", "G", {"10001"}, "g1"), "g1");
  ASSERT_EQ(engine.RequestFriend("10003", "10001", "hi"), TIM_FRIEND_RESULT_PENDING);
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(HandlePushed(engine.SendText("10002", kConvC2C, "10001", "hello")));
  sdk_seam::DropSendResults();  // its heap id copy must not outlive the session
  ASSERT_TRUE(tools->OnSendTextElem(u"10002", kConvC2C, u"unanswered"));
  tools->DownloadMessageElem(u"{}", u"/nowhere/file", 7);
  service::SetCurrentConversation(u"10002", kConvC2C);

  const struct {
    const char* cache;
    std::function<bool()> holds;
  } caches[] = {
      {"recent list", [&] { return tools->RecentCount() != 0; }},
      {"conversation set", [&] { return tools->HasConversation(u"10002"); }},
      {"new messages", [&] { return tools->NewMessageCount(u"10002") != 0; }},
      {"unread marks", [&] { return tools->IsUnread(u"10002"); }},
      // A host reload joins the SDK's groups in: they must be gone as well.
      {"groups",
       [&] {
         tools->LoadHostGroups();
         return tools->FindGroup(u"g1").has_value();
       }},
      {"friends", [&] { return tools->FindFriend(u"10002").has_value(); }},
      {"profiles", [&] { return tools->FindProfile(u"10001").has_value(); }},
      {"friend requests", [&] { return !tools->PendingRequests().empty(); }},
      {"pending sends", [&] { return tools->FindPendingSend(1).has_value(); }},
      {"downloads", [&] { return tools->GetDownloadState(7).has_value(); }},
      {"user", [&] { return !tools->UserId().empty(); }},
      {"open conversation", [&] { return service::IsCurrentConversation(u"10002"); }},
      {"store", [&] { return CChatDb::Instance().IsOpen(); }},
  };
  for (const auto& c : caches) {
    EXPECT_TRUE(PumpUntil(c.holds)) << c.cache << " was never filled";
  }
  tools->ClearResource();
  for (const auto& c : caches) EXPECT_FALSE(c.holds()) << c.cache;
}

TEST_F(SessionTest, LateLoginResultAfterLogoutOpensNothingAndAsksForNothing) {
  SdkCallLog calls;
  sdk_seam::HoldNextLoginResult();
  ASSERT_TRUE(SignIn("10001", false));
  service::InternalLogout(*tools, true);
  ASSERT_TRUE(sdk_seam::ReleaseLoginResult(0));
  EXPECT_FALSE(CChatDb::Instance().IsOpen());
  for (const char* request :
       {"TIMConvGetConvList", "TIMFriendshipGetFriendProfileList", "TIMGroupGetJoinedGroupList"}) {
    EXPECT_TRUE(calls.CallsOf(request).empty()) << request;
  }
}

TEST_F(SessionTest, RefusedSignInOfAnotherUserLeavesTheSignedInUsersFilesAndId) {
  sdk_seam::HoldNextLoginResult();
  ASSERT_TRUE(SignIn("10001", false));
  // Refused by the counter, after LoginIm prepared the other user's folders.
  EXPECT_FALSE(SignIn("10003", false));
  ASSERT_TRUE(sdk_seam::ReleaseLoginResult(0));
  EXPECT_NE(CChatDb::Instance().GetPath().find("/10001/"), std::string::npos)
      << CChatDb::Instance().GetPath();

  // With the counter below one the SDK refuses instead: the user stays.
  service::Counters().logged_in.store(0);
  EXPECT_FALSE(SignIn("10003", false));
  EXPECT_EQ(tools->UserId(), u"10001");
}

TEST_F(SessionTest, SendAnsweredInsideTheCallIsListedThenSettled) {
  ASSERT_TRUE(SignIn());
  for (int32_t code : {0, 9519}) {
    SCOPED_TRACE(code);
    sdk_seam::AnswerSendsInsideTheCall(code);
    bool sent = false;
    WithinSeconds([&] { sent = tools->OnSendTextElem(u"10002", kConvC2C, u"inside"); });
    EXPECT_TRUE(sent);
    std::vector<MessageStru> listed = tools->TakeNewMessages(u"10002", 10);
    ASSERT_FALSE(listed.empty());
    std::optional<MessageStru> send = tools->FindPendingSend(listed.front().local_id);
    ASSERT_TRUE(send);
    EXPECT_EQ(send->status, code == 0 ? kSent : kSendFailed);
    // A failure's notice comes after its message.
    EXPECT_EQ(listed.size(), code == 0 ? 1u : 2u);
    EXPECT_EQ(listed.back().elems.at(0).elem_type, code == 0 ? kElemText : kElemLocalNotice);
  }
}

TEST_F(SessionTest, HistoryPageIsTakenOldestFirstWithoutCountingOrFlashingAgain) {
  ASSERT_TRUE(SignIn());
  for (const char* text : {"m1", "m2", "m3", "m4"}) {
    ASSERT_TRUE(HandlePushed(engine.SendText("10002", kConvC2C, "10001", text)));
  }
  EXPECT_EQ(host_.NewMessageNotices(), 4);
  ASSERT_TRUE(Recent(u"10002"));
  EXPECT_EQ(Recent(u"10002")->info.unread_num, 4u);
  tools->TakeNewMessages(u"10002", 100);
  const size_t marks = CountSeen(msg::kUnreadMarker);
  const int flashes = window.flashes;

  tools->GetMsgList(u"10002", kConvC2C, 4);
  ASSERT_TRUE(PumpUntil([&] { return tools->NewMessageCount(u"10002") == 4; }));
  EXPECT_EQ(Texts(tools->TakeNewMessages(u"10002", 100)),
            (std::vector<WString>{u"m1", u"m2", u"m3", u"m4"}));
  EXPECT_EQ(tools->FindConversation(u"10002")->last_msg.elems.at(0).text, u"m4");
  EXPECT_EQ(Recent(u"10002")->info.last_msg.elems.at(0).text, u"m4");
  EXPECT_EQ(Recent(u"10002")->info.unread_num, 4u);
  EXPECT_EQ(CountSeen(msg::kUnreadMarker), marks);
  EXPECT_EQ(window.flashes, flashes);
  EXPECT_EQ(host_.NewMessageNotices(), 4);
}

TEST_F(SessionTest, NewRequestIsShownWhenMoreThanAPageArePending) {
  for (int i = 0; i < 21; ++i) {
    const std::string id = std::to_string(20001 + i);
    ASSERT_TRUE(engine.CreateAccount(id));
    engine.RequestFriend(id, "10001", "hi");
  }
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([&] { return tools->PendingRequests().size() == 20; }));
  ASSERT_TRUE(engine.CreateAccount("20099"));
  engine.RequestFriend("20099", "10001", "new");
  ASSERT_TRUE(PumpUntilEvent(kSdkEventFriendAddRequest));
  // The window asks for the requests again when told they changed.
  tools->RequestPendencyList(kPendencyListChanged);
  EXPECT_TRUE(PumpUntil([&] {
    for (const PendingFriendRequest& r : tools->PendingRequests()) {
      if (r.pendency.identifier == u"20099") return true;
    }
    return false;
  }));
}

}  // namespace
}  // namespace service_test

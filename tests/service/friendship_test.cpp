// The friendship service against the embedded engine and the local host.
#include "host/local/local_host.h"
#include "service/panes/add_friend_source.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

class FriendshipTest : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    host_.Install();
  }
  void TearDown() override {
    host_.Uninstall();
    ServiceTest::TearDown();
  }
  std::vector<std::string> HostCallsOf(const std::string& name) {
    std::vector<std::string> args;
    for (const host::local::HostCall& call : host_.Calls()) {
      if (call.name == name) args.push_back(call.args);
    }
    return args;
  }
  bool HasFriend(const char16_t* id) { return tools->FindFriend(id).has_value(); }

  host::local::LocalHost host_{testing::TempDir() + "service_send_space"};
};

TEST_F(FriendshipTest, ParameterObjectsCarryExactlyTheirKeys) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([&] { return tools->FindProfile(u"10001").has_value(); }));
  const struct {
    const char* function;
    std::function<int()> call;
    std::vector<std::string> keys;
  } cases[] = {
      {"TIMFriendshipAddFriend",
       [&] { return tools->AddFriend(u"10003", u"账户查找", u"加好友"); },
       {"friendship_add_friend_param_add_source", "friendship_add_friend_param_add_wording",
        "friendship_add_friend_param_friend_type", "friendship_add_friend_param_identifier"}},
      {"TIMFriendshipGetPendencyList",
       [&] { return tools->RequestPendencyList(2); },
       {"friendship_get_pendency_list_param_start_seq", "friendship_get_pendency_list_param_type"}},
      {"TIMFriendshipModifyFriendProfile",
       [&] { return tools->ModifyFriendRemark(u"10002", u"Boss"); },
       {"friendship_modify_friend_profile_param_identifier",
        "friendship_modify_friend_profile_param_item"}},
      {"TIMProfileGetUserProfileList",
       [&] { return tools->RequestUserProfiles({u"10003"}); },
       {"friendship_getprofilelist_param_force_update",
        "friendship_getprofilelist_param_identifier_array"}},
      {"TIMFriendshipHandleFriendAddRequest",
       [&] { return tools->HandleFriendAddRequest(u"10003", u"", u""); },
       {"friend_respone_action", "friend_respone_group_name", "friend_respone_identifier",
        "friend_respone_remark"}},
      {"TIMFriendshipDeleteFriend",
       [&] { return tools->DeleteFriend(u"10003"); },
       {"friendship_delete_friend_param_friend_type",
        "friendship_delete_friend_param_identifier_array"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.function);
    size_t before = log.CallsOf(c.function).size();
    EXPECT_EQ(c.call(), 0);
    std::vector<Json::Value> calls = log.CallsOf(c.function);
    ASSERT_EQ(calls.size(), before + 1);
    EXPECT_EQ(Keys(SdkCallLog::Param(calls.back(), "json")), c.keys);
  }
  Json::Value add = SdkCallLog::Param(log.CallsOf("TIMFriendshipAddFriend")[0], "json");
  EXPECT_EQ(add["friendship_add_friend_param_friend_type"].asInt(), 1);
  EXPECT_EQ(add["friendship_add_friend_param_add_source"].asString(), "账户查找");
  EXPECT_EQ(add["friendship_add_friend_param_add_wording"].asString(),
            "nick10001 请求添加你为好友。");
  Json::Value remark =
      SdkCallLog::Param(log.CallsOf("TIMFriendshipModifyFriendProfile")[0], "json");
  EXPECT_EQ(Keys(remark["friendship_modify_friend_profile_param_item"]),
            (std::vector<std::string>{"friend_profile_item_group_name_array",
                                      "friend_profile_item_remark"}));
  Json::Value answer =
      SdkCallLog::Param(log.CallsOf("TIMFriendshipHandleFriendAddRequest")[0], "json");
  EXPECT_EQ(answer["friend_respone_action"].asInt(), 1);
  Json::Value removal = SdkCallLog::Param(log.CallsOf("TIMFriendshipDeleteFriend")[0], "json");
  EXPECT_EQ(removal["friendship_delete_friend_param_friend_type"].asInt(), 0);
  EXPECT_EQ(removal["friendship_delete_friend_param_identifier_array"][0].asString(), "10003");
  // The peer got the request with the wording.
  EXPECT_EQ(engine.PendencyCount("10003"), 1u);
  ASSERT_TRUE(PumpUntil([&] { return traces.Contains("添加好友 成功!!! cb code:0"); }));
}

// What the add-friend dialog and the search row's button ask of the service
// and the host: the own account told apart, an account without chat identity
// prepared before the request, and each caller's source text.
TEST_F(FriendshipTest, AddFriendSourceFindsPreparesAndRequestsWithTheCallersTexts) {
  host_.AddAccount({10001, u"self@example.com", u"13800000001", u"Me", u"", true});
  host_.AddAccount({10003, u"new@example.com", u"13800000003", u"New", u"", false});
  host_.SignIn(10001);
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  service::ChatToolsAddFriendSource source(*tools);
  AccountInfo self;
  AccountInfo found;
  ASSERT_EQ(source.SearchAccount(u"13800000001", host::AccountKind::kMobile, self),
            host::AccountSearchResult::kFound);
  ASSERT_EQ(source.SearchAccount(u"new@example.com", host::AccountKind::kEmail, found),
            host::AccountSearchResult::kFound);
  EXPECT_TRUE(source.IsOwnAccount(self));
  EXPECT_FALSE(source.IsOwnAccount(found));
  EXPECT_EQ(source.AvatarPicture(found, platform::WindowHandle::kNone),
            u"..\\img\\PersonDefaultImg.png");  // none to fetch

  EXPECT_EQ(source.ActOnAccount(u"new@example.com", host::AccountKind::kEmail, found),
            host::AccountActionResult::kFriendRequestSent);
  EXPECT_EQ(HostCallsOf("PrepareAccountForChat"), std::vector<std::string>{"10003"});
  EXPECT_EQ(source.RequestFriend(u"10002", u"账号查找", u"加好友"), 0);
  std::vector<Json::Value> requests = log.CallsOf("TIMFriendshipAddFriend");
  ASSERT_EQ(requests.size(), 2u);
  const struct {
    const char* id;
    const char* source;
  } expected[] = {{"10003", "账户查找"}, {"10002", "账号查找"}};
  for (size_t i = 0; i < 2; ++i) {
    Json::Value param = SdkCallLog::Param(requests[i], "json");
    EXPECT_EQ(param["friendship_add_friend_param_identifier"].asString(), expected[i].id);
    EXPECT_EQ(param["friendship_add_friend_param_add_source"].asString(), expected[i].source);
  }
}

TEST_F(FriendshipTest, IncomingRequestIsListedAcceptedAndMarkedHandled) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  ASSERT_EQ(engine.RequestFriend("10003", "10001", "hi"), TIM_FRIEND_RESULT_PENDING);
  ASSERT_TRUE(PumpUntilEvent(kSdkEventFriendAddRequest));
  ASSERT_TRUE(PumpUntil([&] {
    return tools->FindProfile(u"10003").has_value() && CountSeen(msg::kFriendRequestsChanged) >= 1;
  }));
  EXPECT_EQ(tools->PersonName(u"10003"), u"nick10003");

  ASSERT_EQ(tools->RequestPendencyList(2), 0);
  ASSERT_TRUE(PumpUntil([&] { return CountSeen(msg::kFriendRequestListChanged) >= 1; }));
  std::vector<PendingFriendRequest> requests = tools->PendingRequests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].pendency.identifier, u"10003");
  // A refused answer leaves it unhandled and posts nothing.
  engine.FailNextCall("TIMFriendshipHandleFriendAddRequest", 1);
  tools->AgreeToAddFriends(&requests[0]);
  tools->AgreeToAddFriends(nullptr);
  PumpUntil([] { return false; }, std::chrono::milliseconds(100));
  EXPECT_FALSE(requests[0].handled);
  EXPECT_EQ(CountSeen(msg::kFriendRequestAccepted) + CountSeen(msg::kFriendRequestHandled), 0u);

  tools->AgreeToAddFriends(&requests[0]);
  EXPECT_TRUE(requests[0].handled);
  EXPECT_TRUE(tools->PendingRequests().at(0).handled);
  ASSERT_TRUE(PumpUntil([&] {
    return CountSeen(msg::kFriendRequestHandled) >= 1 &&
           CountSeen(msg::kFriendRequestAccepted) >= 1;
  }));
  // Both list each other now, and the friend list follows.
  std::vector<std::string> friends = engine.FriendsOf("10001");
  EXPECT_NE(std::find(friends.begin(), friends.end(), "10003"), friends.end());
  ASSERT_TRUE(PumpUntil([&] { return HasFriend(u"10003"); }));

  // A later page no longer has the request; the accepted one stays, marked.
  ASSERT_EQ(tools->RequestPendencyList(2), 0);
  ASSERT_TRUE(PumpUntil([&] { return CountSeen(msg::kFriendRequestListChanged) >= 2; }));
  requests = tools->PendingRequests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_TRUE(requests[0].handled);
}

TEST_F(FriendshipTest, DeletingAFriendTellsTheHostFirstThenDropsFriendAndHistory) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  // Not in the cache: host and SDK are still asked.
  ASSERT_FALSE(HasFriend(u"10003"));
  tools->FriendList_DeleteFriend(u"10003");
  EXPECT_EQ(HostCallsOf("RemoveCloudFriend"), std::vector<std::string>{"10003"});
  EXPECT_EQ(log.CallsOf("TIMFriendshipDeleteFriend").size(), 1u);
  // The host is told even when the SDK then refuses; the friend stays.
  engine.FailNextCall("TIMFriendshipDeleteFriend", 1);
  EXPECT_NE(tools->DeleteFriend(u"10002"), 0);
  EXPECT_EQ(HostCallsOf("RemoveCloudFriend").size(), 2u);
  EXPECT_TRUE(HasFriend(u"10002"));

  ASSERT_TRUE(tools->OnSendTextElem(u"10002", 1, u"bye"));
  ASSERT_TRUE(PumpUntil([&] { return CountSeen(msg::kTransferStateChanged) >= 1; }));
  ASSERT_EQ(StoredRows(u"10002").size(), 1u);
  ClearSeen();
  tools->FriendList_DeleteFriend(u"10002");
  EXPECT_EQ(HostCallsOf("RemoveCloudFriend").size(), 3u);
  EXPECT_FALSE(HasFriend(u"10002"));
  EXPECT_TRUE(StoredRows(u"10002").empty());
  ASSERT_TRUE(PumpUntil([&] { return traces.Contains("删除好友 成功!!!"); }));
  DrainNow();
  EXPECT_GE(CountSeen(msg::kFriendListChanged), 1u);
  std::vector<std::string> friends = engine.FriendsOf("10001");
  EXPECT_EQ(std::find(friends.begin(), friends.end(), "10002"), friends.end());
}

TEST_F(FriendshipTest, RemarkChangeRenamesTheFriendEverywhere) {
  ASSERT_TRUE(SignIn());
  EXPECT_EQ(tools->PersonName(u"10002"), u"nick10002");
  ASSERT_EQ(tools->ModifyFriendRemark(u"10002", u"Boss"), 0);
  ASSERT_TRUE(PumpUntil([&] {
    std::optional<FriendsList_Stru> f = tools->FindFriend(u"10002");
    return f && f->remark == u"Boss";
  }));
  EXPECT_EQ(tools->PersonName(u"10002"), u"Boss");
  EXPECT_EQ(tools->GetConvNickName(1, u"10002"), u"Boss");
}

TEST_F(FriendshipTest, PendingRequestsArePagedFromTheStoredSequence) {
  for (int i = 0; i < 25; ++i) {
    std::string id = std::to_string(20000 + i);
    ASSERT_TRUE(engine.CreateAccount(id));
    ASSERT_EQ(engine.RequestFriend(id, "10001", "hi"), TIM_FRIEND_RESULT_PENDING);
  }
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  // The sign-in asked for the first page.
  ASSERT_TRUE(PumpUntil([&] { return tools->PendencySequence() != 0; }));
  const uint64_t stored = tools->PendencySequence();
  EXPECT_EQ(tools->PendingRequests().size(), 20u);
  ASSERT_EQ(tools->RequestPendencyList(2), 0);
  std::vector<Json::Value> calls = log.CallsOf("TIMFriendshipGetPendencyList");
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(SdkCallLog::Param(calls[0], "json")["friendship_get_pendency_list_param_start_seq"]
                .asUInt64(),
            0u);
  Json::Value second = SdkCallLog::Param(calls[1], "json");
  EXPECT_EQ(second["friendship_get_pendency_list_param_start_seq"].asUInt64(), stored);
  EXPECT_EQ(second["friendship_get_pendency_list_param_type"].asInt(), 0);
  ASSERT_TRUE(PumpUntil([&] { return tools->PendencySequence() == 0; }));
  EXPECT_EQ(tools->PendingRequests().size(), 5u);
}

TEST_F(FriendshipTest, UnreadableJsonIsTracedAndKeepsTheCaches) {
  ASSERT_TRUE(SignIn());
  // The sign-in's own request page has been handled.
  ASSERT_TRUE(PumpUntil([&] { return CountSeen(msg::kFriendRequestsChanged) >= 1; }));
  ClearSeen();
  SdkEventRecord garbage;
  garbage.kind = kSdkEventFriendAddRequest;
  garbage.text = "{not json";
  tools->OnFriendAddRequest(garbage);
  tools->OnFriendsDeleted("[", tools->CurrentSession());
  tools->OnFriendsDeleted(R"([{"id": 1}])", tools->CurrentSession());
  DrainNow();
  EXPECT_EQ(traces.Count("解析json数据错误！error:"), 3u);
  EXPECT_EQ(CountSeen(msg::kFriendRequestsChanged), 0u);
  EXPECT_TRUE(HasFriend(u"10002"));
  EXPECT_EQ(CountSeen(msg::kFriendListChanged), 0u);

  // The 3197 handler with the ids the SDK reports.
  tools->OnFriendsDeleted(R"(["10002","nobody"])", tools->CurrentSession());
  DrainNow();
  EXPECT_FALSE(HasFriend(u"10002"));
  EXPECT_EQ(CountSeen(msg::kFriendListChanged), 1u);
}

}  // namespace
}  // namespace service_test

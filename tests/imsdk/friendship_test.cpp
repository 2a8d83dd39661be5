// Friends, friend requests with pendency pages, profiles.
#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

class FriendshipTest : public SdkTest {
 protected:
  void SetUp() override {
    SdkTest::SetUp();
    SignIn("alice");
    control.UpdateProfile("alice", {"alice", "", kTIMAddPermission_NeedConfirm, ""});
  }
  Json::Value Page(const std::string& tag, uint64_t start_seq, int size, int type = 0) {
    Json::Value p;
    p["friendship_get_pendency_list_param_type"] = type;
    p["friendship_get_pendency_list_param_start_seq"] = Json::UInt64(start_seq);
    p["friendship_get_pendency_list_param_limited_size"] = size;
    return Parse(
        Request(tag, TIMFriendshipGetPendencyList(Write(p).c_str(), OnResult, Tag(tag))).json);
  }
};

TEST_F(FriendshipTest, IncomingRequestsPageBySequenceAndCanBeAccepted) {
  for (const char* id : {"p1", "p2", "p3"}) {
    control.CreateAccount(id);
    EXPECT_EQ(control.RequestFriend(id, "alice", std::string(id) + " 请求添加你为好友。"),
              TIM_FRIEND_RESULT_PENDING);
  }
  auto requests = rec.WaitFor("friend_request", 3);
  ASSERT_EQ(requests.size(), 3u);
  EXPECT_EQ(Parse(requests[0].json)[0]["friend_add_pendency_info_idenitifer"].asString(), "p1");

  Json::Value first = Page("page1", 0, 2);
  ASSERT_EQ(first["pendency_page_pendency_info_array"].size(), 2u);
  EXPECT_EQ(first["pendency_page_pendency_info_array"][0]["friend_add_pendency_info_idenitifer"]
                .asString(),
            "p3");
  EXPECT_EQ(first["pendency_page_unread_num"].asUInt64(), 3u);
  uint64_t next = first["pendency_page_current_seq"].asUInt64();
  ASSERT_NE(next, 0u);
  Json::Value second = Page("page2", next, 2);
  ASSERT_EQ(second["pendency_page_pendency_info_array"].size(), 1u);
  EXPECT_EQ(second["pendency_page_pendency_info_array"][0]["friend_add_pendency_info_idenitifer"]
                .asString(),
            "p1");
  EXPECT_EQ(second["pendency_page_current_seq"].asUInt64(), 0u);

  ASSERT_EQ(
      Request("read", TIMFriendshipReportPendencyReaded(UINT32_MAX, OnResult, Tag("read"))).code,
      0);
  EXPECT_EQ(Page("page3", 0, 20)["pendency_page_unread_num"].asUInt64(), 0u);

  Json::Value answer;
  answer["friend_respone_identifier"] = "p2";
  answer["friend_respone_action"] = 1;
  answer["friend_respone_remark"] = "";
  answer["friend_respone_group_name"] = "";
  Record r = Request("handle", TIMFriendshipHandleFriendAddRequest(Write(answer).c_str(), OnResult,
                                                                   Tag("handle")));
  EXPECT_EQ(r.code, 0);
  EXPECT_EQ(Parse(r.json)["friend_result_identifier"].asString(), "p2");
  EXPECT_EQ(Parse(rec.WaitFor("friend_added")[0].json)[0].asString(), "p2");
  EXPECT_EQ(control.FriendsOf("p2"), std::vector<std::string>{"alice"});
  EXPECT_EQ(Page("page4", 0, 20)["pendency_page_pendency_info_array"].size(), 2u);
  // Answering again: no such request.
  EXPECT_EQ(Request("again", TIMFriendshipHandleFriendAddRequest(Write(answer).c_str(), OnResult,
                                                                 Tag("again")))
                .code,
            TIM_ERR_PENDENCY_NOT_FOUND);
}

TEST_F(FriendshipTest, AddFriendFollowsThePeersPermission) {
  control.CreateAccount("open", {"", "", kTIMAddPermission_AllowAny, ""});
  control.CreateAccount("careful", {"", "", kTIMAddPermission_NeedConfirm, ""});
  control.CreateAccount("closed", {"", "", kTIMAddPermission_DenyAny, ""});
  struct Case {
    const char* id;
    int result;
  } cases[] = {{"open", 0},
               {"careful", TIM_FRIEND_RESULT_PENDING},
               {"closed", TIM_FRIEND_RESULT_DENIED},
               {"open", TIM_FRIEND_RESULT_ALREADY_FRIEND}};
  int n = 0;
  for (const auto& c : cases) {
    Json::Value p;
    p["friendship_add_friend_param_identifier"] = c.id;
    p["friendship_add_friend_param_friend_type"] = 1;
    p["friendship_add_friend_param_add_source"] = "账户查找";
    p["friendship_add_friend_param_add_wording"] = "alice 请求添加你为好友。";
    std::string tag = "add" + std::to_string(n++);
    Record r = Request(tag, TIMFriendshipAddFriend(Write(p).c_str(), OnResult, Tag(tag)));
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(Parse(r.json)["friend_result_code"].asInt(), c.result) << c.id;
  }
  EXPECT_EQ(control.PendencyCount("careful"), 1u);
  EXPECT_EQ(control.AnswerFriendRequest("careful", "alice", 1), 0);
  auto added = rec.WaitFor("friend_added", 2);
  ASSERT_EQ(added.size(), 2u);
  EXPECT_EQ(Parse(added[1].json)[0].asString(), "careful");
  Json::Value friends =
      Parse(Request("list", TIMFriendshipGetFriendProfileList(OnResult, Tag("list"))).json);
  ASSERT_EQ(friends.size(), 2u);
  EXPECT_EQ(friends[0]["friend_profile_identifier"].asString(), "careful");
  EXPECT_EQ(friends[0]["friend_profile_user_profile"]["user_profile_add_permission"].asInt(), 2);
}

TEST_F(FriendshipTest, DeleteModifyAndProfiles) {
  control.CreateAccount("bob", {"Bob", "f", kTIMAddPermission_NeedConfirm, ""});
  control.MakeFriends("alice", "bob");
  Json::Value m;
  m["friendship_modify_friend_profile_param_identifier"] = "bob";
  m["friendship_modify_friend_profile_param_item"]["friend_profile_item_remark"] = "B";
  EXPECT_EQ(
      Request("mod", TIMFriendshipModifyFriendProfile(Write(m).c_str(), OnResult, Tag("mod"))).code,
      0);
  control.UpdateProfile("bob", {"Bobby", "f2", kTIMAddPermission_NeedConfirm, ""});
  EXPECT_EQ(Parse(rec.WaitFor("friend_profile")[0].json)[0]["friend_profile_update_identifier"]
                .asString(),
            "bob");
  Json::Value d;
  d["friendship_delete_friend_param_identifier_array"][0] = "bob";
  d["friendship_delete_friend_param_identifier_array"][1] = "nobody";
  d["friendship_delete_friend_param_friend_type"] = 0;
  Json::Value results =
      Parse(Request("del", TIMFriendshipDeleteFriend(Write(d).c_str(), OnResult, Tag("del"))).json);
  EXPECT_EQ(results[0]["friend_result_code"].asInt(), 0);
  EXPECT_EQ(results[1]["friend_result_code"].asInt(), TIM_FRIEND_RESULT_NOT_FRIEND);
  EXPECT_EQ(Parse(rec.WaitFor("friend_deleted")[0].json)[0].asString(), "bob");
  EXPECT_EQ(control.FriendsOf("bob"), std::vector<std::string>{"alice"});  // one-sided

  Json::Value q;
  q["friendship_getprofilelist_param_identifier_array"][0] = "bob";
  q["friendship_getprofilelist_param_identifier_array"][1] = "ghost";
  q["friendship_getprofilelist_param_force_update"] = false;
  Json::Value profiles = Parse(
      Request("prof", TIMProfileGetUserProfileList(Write(q).c_str(), OnResult, Tag("prof"))).json);
  ASSERT_EQ(profiles.size(), 1u);
  EXPECT_EQ(profiles[0]["user_profile_nick_name"].asString(), "Bobby");

  Record self =
      Request("self", TIMProfileModifySelfUserProfile(R"({"user_profile_item_add_permission":2})",
                                                      OnResult, Tag("self")));
  EXPECT_EQ(Parse(self.json)["user_profile_add_permission"].asInt(), 2);
}

}  // namespace
}  // namespace imsdk_test

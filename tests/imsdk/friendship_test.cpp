// Friends, friend requests with pendency pages, profiles.
#include <tuple>

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
  // One page of incoming requests: {ids newest first, unread count, next sequence}.
  std::tuple<std::vector<std::string>, uint64_t, uint64_t> Page(uint64_t start_seq, int size) {
    Json::Value p;
    p["friendship_get_pendency_list_param_type"] = 0;
    p["friendship_get_pendency_list_param_start_seq"] = Json::UInt64(start_seq);
    p["friendship_get_pendency_list_param_limited_size"] = size;
    Json::Value page =
        CallJson("page" + std::to_string(pages_++), TIMFriendshipGetPendencyList, Write(p).c_str());
    std::vector<std::string> ids;
    for (const auto& i : page["pendency_page_pendency_info_array"])
      ids.push_back(i["friend_add_pendency_info_idenitifer"].asString());
    return {ids, page["pendency_page_unread_num"].asUInt64(),
            page["pendency_page_current_seq"].asUInt64()};
  }
  int pages_ = 0;
};

using Ids = std::vector<std::string>;

TEST_F(FriendshipTest, IncomingRequestsPageBySequenceAndCanBeAccepted) {
  for (const char* id : {"p1", "p2", "p3"}) {
    control.CreateAccount(id);
    EXPECT_EQ(control.RequestFriend(id, "alice", std::string(id) + " 请求添加你为好友。"),
              TIM_FRIEND_RESULT_PENDING);
  }
  auto requests = rec.WaitFor("friend_request", 3);
  ASSERT_EQ(requests.size(), 3u);
  EXPECT_EQ(Parse(requests[0].json)[0]["friend_add_pendency_info_idenitifer"].asString(), "p1");

  auto [first, unread, next] = Page(0, 2);
  EXPECT_EQ(first, (Ids{"p3", "p2"}));
  EXPECT_EQ(unread, 3u);
  ASSERT_NE(next, 0u);
  auto [second, unread2, end] = Page(next, 2);
  EXPECT_EQ(second, Ids{"p1"});
  EXPECT_EQ(end, 0u);
  ASSERT_EQ(Call("read", TIMFriendshipReportPendencyReaded, UINT32_MAX).code, 0);
  EXPECT_EQ(std::get<1>(Page(0, 20)), 0u);

  const char* answer = R"({"friend_respone_identifier":"p2","friend_respone_action":1,
      "friend_respone_remark":"","friend_respone_group_name":""})";
  Json::Value r = CallJson("handle", TIMFriendshipHandleFriendAddRequest, answer);
  EXPECT_EQ(r["friend_result_identifier"].asString(), "p2");
  EXPECT_EQ(Parse(rec.WaitFor("friend_added")[0].json)[0].asString(), "p2");
  EXPECT_EQ(control.FriendsOf("p2"), Ids{"alice"});
  EXPECT_EQ(std::get<0>(Page(0, 20)), (Ids{"p3", "p1"}));
  EXPECT_EQ(Call("again", TIMFriendshipHandleFriendAddRequest, answer).code,
            TIM_ERR_PENDENCY_NOT_FOUND);
}

TEST_F(FriendshipTest, AddFriendFollowsThePeersPermission) {
  OpenAccount("open");
  control.CreateAccount("careful", {"", "", kTIMAddPermission_NeedConfirm, ""});
  control.CreateAccount("closed", {"", "", kTIMAddPermission_DenyAny, ""});
  const struct {
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
    Record r = Call("add" + std::to_string(n++), TIMFriendshipAddFriend, Write(p).c_str());
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(Parse(r.json)["friend_result_code"].asInt(), c.result) << c.id;
  }
  EXPECT_EQ(control.PendencyCount("careful"), 1u);
  EXPECT_EQ(control.AnswerFriendRequest("careful", "alice", 1), 0);
  auto added = rec.WaitFor("friend_added", 2);
  ASSERT_EQ(added.size(), 2u);
  EXPECT_EQ(Parse(added[1].json)[0].asString(), "careful");
  Json::Value friends = CallJson("list", TIMFriendshipGetFriendProfileList);
  ASSERT_EQ(friends.size(), 2u);
  EXPECT_EQ(friends[0]["friend_profile_identifier"].asString(), "careful");
  EXPECT_EQ(friends[0]["friend_profile_user_profile"]["user_profile_add_permission"].asInt(), 2);
}

TEST_F(FriendshipTest, DeleteModifyAndProfiles) {
  control.CreateAccount("bob", {"Bob", "f", kTIMAddPermission_NeedConfirm, ""});
  control.MakeFriends("alice", "bob");
  EXPECT_EQ(Call("mod", TIMFriendshipModifyFriendProfile,
                 R"({"friendship_modify_friend_profile_param_identifier":"bob",
      "friendship_modify_friend_profile_param_item":{"friend_profile_item_remark":"B"}})")
                .code,
            0);
  control.UpdateProfile("bob", {"Bobby", "f2", kTIMAddPermission_NeedConfirm, ""});
  EXPECT_EQ(Parse(rec.WaitFor("friend_profile")[0].json)[0]["friend_profile_update_identifier"]
                .asString(),
            "bob");
  Json::Value results = CallJson("del", TIMFriendshipDeleteFriend,
                                 R"({"friendship_delete_friend_param_friend_type":0,
      "friendship_delete_friend_param_identifier_array":["bob","nobody"]})");
  EXPECT_EQ(results[0]["friend_result_code"].asInt(), 0);
  EXPECT_EQ(results[1]["friend_result_code"].asInt(), TIM_FRIEND_RESULT_NOT_FRIEND);
  EXPECT_EQ(Parse(rec.WaitFor("friend_deleted")[0].json)[0].asString(), "bob");
  EXPECT_EQ(control.FriendsOf("bob"), Ids{"alice"});  // one-sided

  Json::Value profiles = CallJson("prof", TIMProfileGetUserProfileList,
                                  R"({"friendship_getprofilelist_param_force_update":false,
      "friendship_getprofilelist_param_identifier_array":["bob","ghost"]})");
  ASSERT_EQ(profiles.size(), 1u);
  EXPECT_EQ(profiles[0]["user_profile_nick_name"].asString(), "Bobby");
  Json::Value self = CallJson("self", TIMProfileModifySelfUserProfile,
                              R"({"user_profile_item_add_permission":2})");
  EXPECT_EQ(self["user_profile_add_permission"].asInt(), 2);
}

}  // namespace
}  // namespace imsdk_test

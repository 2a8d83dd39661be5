// Friends, friend requests and profiles against a third-party client.
#include "tests/xmpp/xmpp_fixture.h"

namespace xmpp_test {
namespace {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Tag;
using imsdk_test::Write;

Json::Value Presence(const std::string& to, const std::string& type) {
  Json::Value cmd;
  cmd["cmd"] = "presence";
  cmd["to"] = to + "@localhost";
  cmd["type"] = type;
  return cmd;
}

auto PresenceFrom(const std::string& from, const std::string& type) {
  return [from, type](const Json::Value& e) {
    return e["event"].asString() == "presence" && e["from"].asString() == from + "@localhost" &&
           e["type"].asString() == type;
  };
}

TEST_F(XmppTest, AddingAFriendTheyAcceptThenDeleting) {
  ASSERT_EQ(SignIn("erin").code, TIM_SUCC);
  auto fred = StartPeer("fred");
  Json::Value add;
  add["friendship_add_friend_param_identifier"] = "fred";
  add["friendship_add_friend_param_remark"] = "Fred from CAD";
  add["friendship_add_friend_param_add_wording"] = "hi fred, it's erin";
  ASSERT_EQ(TIMFriendshipAddFriend(Write(add).c_str(), OnResult, Tag("add")), TIM_SUCC);
  EXPECT_EQ(Parse(rec.Result("add").json)["friend_result_code"].asInt(), TIM_FRIEND_RESULT_PENDING);
  Json::Value request = fred->WaitFor(PresenceFrom("erin", "subscribe"));
  ASSERT_FALSE(request.isNull());
  EXPECT_EQ(request["status"].asString(), "hi fred, it's erin");

  // Accepting the usual way: allow, and ask back (erin's SDK allows).
  fred->Command(Presence("erin", "subscribed"));
  fred->Command(Presence("erin", "subscribe"));
  auto added = rec.WaitFor("friend_added");
  ASSERT_FALSE(added.empty());
  EXPECT_EQ(Parse(added[0].json)[0].asString(), "fred");
  ASSERT_EQ(TIMFriendshipGetFriendProfileList(OnResult, Tag("friends")), TIM_SUCC);
  Json::Value friends = Parse(rec.Result("friends").json);
  ASSERT_EQ(friends.size(), 1u);
  EXPECT_EQ(friends[0]["friend_profile_remark"].asString(), "Fred from CAD");

  // Signing out closes the stream: the contact sees erin leave at once.
  ASSERT_FALSE(fred->WaitFor(PresenceFrom("erin", "available")).isNull());
  ASSERT_EQ(TIMLogout(OnResult, Tag("out")), TIM_SUCC);
  EXPECT_FALSE(fred->WaitFor(PresenceFrom("erin", "unavailable"), 5).isNull());

  ASSERT_EQ(SignIn("erin").code, TIM_SUCC);
  Json::Value del;
  del["friendship_delete_friend_param_identifier_array"].append("fred");
  del["friendship_delete_friend_param_friend_type"] = 1;
  ASSERT_EQ(TIMFriendshipDeleteFriend(Write(del).c_str(), OnResult, Tag("del")), TIM_SUCC);
  EXPECT_EQ(Parse(rec.Result("del").json)[0]["friend_result_code"].asInt(), TIM_SUCC);
  auto deleted = rec.WaitFor("friend_deleted");
  ASSERT_FALSE(deleted.empty());
  EXPECT_EQ(Parse(deleted[0].json)[0].asString(), "fred");
}

TEST_F(XmppTest, ARequestMadeWhileOfflineIsKeptAndCanBeAccepted) {
  {
    auto gina = StartPeer("gina");
    Json::Value ask = Presence("hank", "subscribe");
    ask["status"] = "please add me";
    gina->Command(ask);
  }
  ASSERT_EQ(SignIn("hank").code, TIM_SUCC);
  auto requests = rec.WaitFor("friend_request");
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(Parse(requests[0].json)[0]["friend_add_pendency_info_add_wording"].asString(),
            "please add me");

  // Still listed after signing in again; the server's re-delivery is no new request.
  ASSERT_EQ(TIMLogout(OnResult, Tag("out")), TIM_SUCC);
  ASSERT_EQ(SignIn("hank").code, TIM_SUCC);
  Json::Value query;
  query["friendship_get_pendency_list_param_type"] = kTIMPendency_ComeIn;
  ASSERT_EQ(TIMFriendshipGetPendencyList(Write(query).c_str(), OnResult, Tag("list")), TIM_SUCC);
  Json::Value page = Parse(rec.Result("list").json);
  ASSERT_EQ(page["pendency_page_pendency_info_array"].size(), 1u);
  EXPECT_EQ(page["pendency_page_pendency_info_array"][0]["friend_add_pendency_info_idenitifer"]
                .asString(),
            "gina");
  EXPECT_EQ(rec.Count("friend_request"), 1u);

  auto gina = StartPeer("gina");
  Json::Value answer;
  answer["friend_respone_identifier"] = "gina";
  answer["friend_respone_action"] = 1;
  ASSERT_EQ(TIMFriendshipHandleFriendAddRequest(Write(answer).c_str(), OnResult, Tag("yes")),
            TIM_SUCC);
  EXPECT_EQ(rec.Result("yes").code, TIM_SUCC);
  ASSERT_FALSE(gina->WaitFor(PresenceFrom("hank", "subscribe")).isNull());
  gina->Command(Presence("hank", "subscribed"));
  auto added = rec.WaitFor("friend_added");
  ASSERT_FALSE(added.empty());
  EXPECT_EQ(Parse(added[0].json)[0].asString(), "gina");
  ASSERT_EQ(TIMFriendshipHandleFriendAddRequest(Write(answer).c_str(), OnResult, Tag("again")),
            TIM_SUCC);
  EXPECT_EQ(rec.Result("again").code, TIM_ERR_PENDENCY_NOT_FOUND);
}

TEST_F(XmppTest, OwnProfileIsAVCardOthersCanRead) {
  ASSERT_EQ(SignIn("bob").code, TIM_SUCC);
  Json::Value change;
  change["user_profile_item_nick_name"] = "Bob 设计";
  change["user_profile_item_face_url"] = "https://example.org/bob.png";
  ASSERT_EQ(TIMProfileModifySelfUserProfile(Write(change).c_str(), OnResult, Tag("set")), TIM_SUCC);
  auto set = rec.Result("set");
  ASSERT_EQ(set.code, TIM_SUCC) << set.json;
  EXPECT_EQ(Parse(set.json)["user_profile_nick_name"].asString(), "Bob 设计");
  // What the vCard would not give back is refused, not dropped.
  Json::Value unkept = change;
  unkept["user_profile_item_gender"] = 1;
  EXPECT_EQ(TIMProfileModifySelfUserProfile(Write(unkept).c_str(), OnResult, Tag("unkept")),
            TIM_ERR_INVALID_PARAM);

  Json::Value query;
  query["friendship_getprofilelist_param_identifier_array"].append("bob");
  query["friendship_getprofilelist_param_identifier_array"].append("nobody-at-all");
  ASSERT_EQ(TIMProfileGetUserProfileList(Write(query).c_str(), OnResult, Tag("get")), TIM_SUCC);
  Json::Value profiles = Parse(rec.Result("get").json);
  ASSERT_EQ(profiles.size(), 1u);
  EXPECT_EQ(profiles[0]["user_profile_face_url"].asString(), "https://example.org/bob.png");
}

}  // namespace
}  // namespace xmpp_test

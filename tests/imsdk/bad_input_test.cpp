// Null pointers, malformed JSON, odd types, long strings, calls out of
// order: always a refusal code, never a callback, never a crash.
#include <functional>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

struct BadCall {
  const char* name;
  std::function<int()> call;
  int expected;
};

const std::string kLongId(TIM_MAX_ID_LENGTH + 1, 'x');
const std::string kHugeJson = "\"" + std::string(TIM_MAX_JSON_LENGTH + 10, 'a') + "\"";

std::vector<BadCall> SignedInBadCalls() {
  auto cb = OnResult;
  void* t = Tag("bad");
  return {
      {"send null conv", [=] { return TIMMsgSendNewMsg(nullptr, 1, "{}", cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"send empty conv", [=] { return TIMMsgSendNewMsg("", 1, "{}", cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"send long conv", [=] { return TIMMsgSendNewMsg(kLongId.c_str(), 1, "{}", cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"send conv type 0", [=] { return TIMMsgSendNewMsg("bob", 0, "{}", cb, t); },
       TIM_ERR_INVALID_CONV_TYPE},
      {"send conv type 3", [=] { return TIMMsgSendNewMsg("bob", 3, "{}", cb, t); },
       TIM_ERR_INVALID_CONV_TYPE},
      {"send null json", [=] { return TIMMsgSendNewMsg("bob", 1, nullptr, cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"send not json", [=] { return TIMMsgSendNewMsg("bob", 1, "{oops", cb, t); },
       TIM_ERR_INVALID_JSON},
      {"send array", [=] { return TIMMsgSendNewMsg("bob", 1, "[]", cb, t); }, TIM_ERR_INVALID_JSON},
      {"send no elems", [=] { return TIMMsgSendNewMsg("bob", 1, "{}", cb, t); },
       TIM_ERR_INVALID_JSON},
      {"send elem type string",
       [=] {
         return TIMMsgSendNewMsg("bob", 1, R"({"message_elem_array":[{"elem_type":"0"}]})", cb, t);
       },
       TIM_ERR_INVALID_JSON},
      {"send text not string",
       [=] {
         return TIMMsgSendNewMsg(
             "bob", 1, R"({"message_elem_array":[{"elem_type":0,"text_elem_content":5}]})", cb, t);
       },
       TIM_ERR_INVALID_JSON},
      {"send unknown elem",
       [=] {
         return TIMMsgSendNewMsg("bob", 1, R"({"message_elem_array":[{"elem_type":7}]})", cb, t);
       },
       TIM_ERR_INVALID_JSON},
      {"send huge json", [=] { return TIMMsgSendNewMsg("bob", 1, kHugeJson.c_str(), cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"history unknown conv",
       [=] { return TIMMsgGetMsgList("nobody", 1, R"({"msg_getmsglist_param_count":5})", cb, t); },
       TIM_ERR_CONV_NOT_FOUND},
      {"history count 0",
       [=] { return TIMMsgGetMsgList("bob", 1, R"({"msg_getmsglist_param_count":0})", cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"history count string",
       [=] { return TIMMsgGetMsgList("bob", 1, R"({"msg_getmsglist_param_count":"5"})", cb, t); },
       TIM_ERR_INVALID_JSON},
      {"read unknown conv", [=] { return TIMMsgReportReaded("nobody", 2, nullptr, cb, t); },
       TIM_ERR_CONV_NOT_FOUND},
      {"delete unknown conv", [=] { return TIMConvDelete("nobody", 1, cb, t); },
       TIM_ERR_CONV_NOT_FOUND},
      {"create conv type 9", [=] { return TIMConvCreate("bob", 9, cb, t); },
       TIM_ERR_INVALID_CONV_TYPE},
      {"download null path",
       [=] {
         return TIMMsgDownloadElemToPath(R"({"msg_download_elem_param_id":"x"})", nullptr, cb, t);
       },
       TIM_ERR_INVALID_PARAM},
      {"download no id", [=] { return TIMMsgDownloadElemToPath("{}", "/tmp/x", cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"add friend no id", [=] { return TIMFriendshipAddFriend("{}", cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"add friend id number",
       [=] {
         return TIMFriendshipAddFriend(R"({"friendship_add_friend_param_identifier":1})", cb, t);
       },
       TIM_ERR_INVALID_JSON},
      {"delete friend null", [=] { return TIMFriendshipDeleteFriend(nullptr, cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"pendency type 7",
       [=] {
         return TIMFriendshipGetPendencyList(R"({"friendship_get_pendency_list_param_type":7})", cb,
                                             t);
       },
       TIM_ERR_INVALID_PARAM},
      {"profile ids not array",
       [=] {
         return TIMProfileGetUserProfileList(
             R"({"friendship_getprofilelist_param_identifier_array":"bob"})", cb, t);
       },
       TIM_ERR_INVALID_JSON},
      {"permission 9",
       [=] {
         return TIMProfileModifySelfUserProfile(R"({"user_profile_item_add_permission":9})", cb, t);
       },
       TIM_ERR_INVALID_PARAM},
      {"group info not array", [=] { return TIMGroupGetGroupInfoList("{}", cb, t); },
       TIM_ERR_INVALID_JSON},
      {"group info ids numbers", [=] { return TIMGroupGetGroupInfoList("[1,2]", cb, t); },
       TIM_ERR_INVALID_JSON},
      {"group create no name", [=] { return TIMGroupCreate("{}", cb, t); }, TIM_ERR_INVALID_PARAM},
      {"group delete null", [=] { return TIMGroupDelete(nullptr, cb, t); }, TIM_ERR_INVALID_PARAM},
      {"group quit long", [=] { return TIMGroupQuit(kLongId.c_str(), cb, t); },
       TIM_ERR_INVALID_PARAM},
      {"group modify nothing",
       [=] {
         return TIMGroupModifyGroupInfo(R"({"group_modify_info_param_group_id":"g"})", cb, t);
       },
       TIM_ERR_INVALID_PARAM},
      {"login while signed in", [=] { return TIMLogin("alice", "", cb, t); },
       TIM_ERR_ALREADY_LOGGED_IN},
      {"init twice", [=] { return TIMInit(1, nullptr); }, TIM_ERR_ALREADY_INITIALIZED},
      {"config not json", [=] { return TIMSetConfig("nope", cb, t); }, TIM_ERR_INVALID_JSON},
  };
}

TEST_F(SdkTest, BadInputIsRefusedWithoutACallback) {
  SignIn("alice");
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, ""});
  ASSERT_EQ(control.SendText("bob", kTIMConv_C2C, "alice", "hi"), 0);
  rec.WaitFor("new_msg");
  for (const auto& c : SignedInBadCalls()) EXPECT_EQ(c.call(), c.expected) << c.name;
  ASSERT_EQ(TIMLogout(OnResult, Tag("logout")), TIM_SUCC);
  EXPECT_EQ(rec.Count("result"), 2u);  // login and logout only
}

TEST_F(SdkTest, CallsThatNeedASessionAreRefusedBeforeLogin) {
  void* t = Tag("early");
  EXPECT_EQ(TIMConvGetConvList(OnResult, t), TIM_ERR_NOT_LOGGED_IN);
  EXPECT_EQ(TIMMsgSendNewMsg("bob", 1, R"({"message_elem_array":[{"elem_type":0,
      "text_elem_content":"x"}]})",
                             OnResult, t),
            TIM_ERR_NOT_LOGGED_IN);
  EXPECT_EQ(TIMFriendshipGetFriendProfileList(OnResult, t), TIM_ERR_NOT_LOGGED_IN);
  EXPECT_EQ(TIMGroupGetJoinedGroupList(OnResult, t), TIM_ERR_NOT_LOGGED_IN);
  EXPECT_EQ(TIMLogout(OnResult, t), TIM_ERR_NOT_LOGGED_IN);
  EXPECT_EQ(TIMLogin(nullptr, "x", OnResult, t), TIM_ERR_INVALID_PARAM);
  EXPECT_EQ(TIMLogin("alice", nullptr, OnResult, t), TIM_ERR_INVALID_PARAM);
}

TEST_F(SdkTest, EverythingIsRefusedBeforeInitAndAfterUninit) {
  ASSERT_EQ(TIMUninit(), TIM_SUCC);
  void* t = Tag("uninit");
  const int n = TIM_ERR_NOT_INITIALIZED;
  EXPECT_EQ(TIMLogin("alice", "x", OnResult, t), n);
  EXPECT_EQ(TIMLogout(OnResult, t), n);
  EXPECT_EQ(TIMSetConfig("{}", OnResult, t), n);
  EXPECT_EQ(TIMConvGetConvList(OnResult, t), n);
  EXPECT_EQ(TIMConvCreate("a", 1, OnResult, t), n);
  EXPECT_EQ(TIMMsgSendNewMsg(nullptr, 0, nullptr, OnResult, t), n);
  EXPECT_EQ(TIMMsgGetMsgList("a", 1, "{}", OnResult, t), n);
  EXPECT_EQ(TIMMsgDownloadElemToPath(nullptr, nullptr, OnResult, t), n);
  EXPECT_EQ(TIMFriendshipAddFriend(nullptr, OnResult, t), n);
  EXPECT_EQ(TIMFriendshipReportPendencyReaded(0, OnResult, t), n);
  EXPECT_EQ(TIMGroupCreate(nullptr, OnResult, t), n);
  EXPECT_EQ(TIMGroupQuit(nullptr, OnResult, t), n);
  EXPECT_EQ(TIMUninit(), n);
  EXPECT_EQ(TIMInit(1, "[1]"), TIM_ERR_INVALID_JSON);
  EXPECT_EQ(TIMInit(1, R"({"sdk_config_log_file_path":3})"), TIM_ERR_INVALID_JSON);
  // Callback setters accept anything at any time, null included.
  TIMSetLogCallback(nullptr, nullptr);
  TIMAddRecvNewMsgCallback(nullptr, nullptr);
  TIMRemoveRecvNewMsgCallback(nullptr);
  ASSERT_EQ(TIMInit(1, nullptr), TIM_SUCC);
  EXPECT_EQ(rec.Count("result"), 0u);
}

TEST_F(SdkTest, QueuedCallFailuresReturnTheirCodeOnce) {
  SignIn("alice");
  const char* functions[] = {"TIMConvGetConvList", "TIMLogout", "TIMFriendshipGetFriendProfileList",
                             "TIMGroupGetJoinedGroupList"};
  for (const char* f : functions) control.FailNextCall(f, 4242);
  void* t = Tag("q");
  EXPECT_EQ(TIMConvGetConvList(OnResult, t), 4242);
  EXPECT_EQ(TIMFriendshipGetFriendProfileList(OnResult, t), 4242);
  EXPECT_EQ(TIMGroupGetJoinedGroupList(OnResult, t), 4242);
  EXPECT_EQ(TIMLogout(OnResult, t), 4242);
  EXPECT_EQ(control.SignedInAccount(), "alice");
  EXPECT_EQ(TIMConvGetConvList(OnResult, Tag("ok")), TIM_SUCC);
  EXPECT_EQ(rec.Result("ok").code, TIM_SUCC);
}

TEST_F(SdkTest, QueuedResultFailuresAnswerTheirCodeAndDoNothing) {
  SignIn("alice");
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, ""});
  struct Case {
    const char* function;
    std::function<int(void*)> call;
  } cases[] = {
      {"TIMConvCreate", [](void* t) { return TIMConvCreate("bob", 1, OnResult, t); }},
      {"TIMFriendshipAddFriend",
       [](void* t) {
         return TIMFriendshipAddFriend(R"({"friendship_add_friend_param_identifier":"bob"})",
                                       OnResult, t);
       }},
      {"TIMGroupCreate",
       [](void* t) {
         return TIMGroupCreate(R"({"create_group_param_group_name":"g"})", OnResult, t);
       }},
      {"TIMMsgSendNewMsg",
       [](void* t) {
         return TIMMsgSendNewMsg(
             "bob", 1, R"({"message_elem_array":[{"elem_type":0,"text_elem_content":"x"}]})",
             OnResult, t);
       }},
  };
  for (const auto& c : cases) {
    control.FailNextResult(c.function, 8001);
    ASSERT_EQ(c.call(Tag(c.function)), TIM_SUCC) << c.function;
    EXPECT_EQ(rec.Result(c.function).code, 8001) << c.function;
  }
  EXPECT_FALSE(control.HasConversation("alice", 1, "bob"));
  EXPECT_TRUE(control.FriendsOf("alice").empty());
  EXPECT_EQ(control.MessageCount("bob", 1, "alice"), 0u);
}

}  // namespace
}  // namespace imsdk_test

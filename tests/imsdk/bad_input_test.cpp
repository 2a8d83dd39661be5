// Null pointers, malformed JSON, odd types, long strings, calls out of
// order: always a refusal code, never a callback, never a crash.
#include <functional>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

enum State { kOff, kOut, kIn };  // not initialized, initialized, signed in as alice

struct BadCall {
  State state;
  const char* call;
  std::function<int()> run;
  int expected;
};

const TIMCommCallback cb = OnResult;
void* const t = Tag("bad");
const std::string kLongId(TIM_MAX_ID_LENGTH + 1, 'x');
const std::string kHugeJson = "\"" + std::string(TIM_MAX_JSON_LENGTH + 10, 'a') + "\"";
const char* const kText = R"({"message_elem_array":[{"elem_type":0,"text_elem_content":"x"}]})";

#define ROW(state, expected, call)              \
  {                                             \
    state, #call, [] { return call; }, expected \
  }

const BadCall kBadCalls[] = {
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMLogin("alice", "x", cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMLogout(cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMConvGetConvList(cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMConvCreate("a", 1, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMMsgSendNewMsg(nullptr, 0, nullptr, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMMsgGetMsgList("a", 1, "{}", cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMMsgDownloadElemToPath(nullptr, nullptr, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMFriendshipAddFriend(nullptr, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMFriendshipReportPendencyReaded(0, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMGroupCreate(nullptr, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMGroupQuit(nullptr, cb, t)),
    ROW(kOff, TIM_ERR_NOT_INITIALIZED, TIMUninit()),
    ROW(kOff, TIM_ERR_INVALID_JSON, TIMInit(1, "[1]")),
    ROW(kOff, TIM_ERR_INVALID_JSON, TIMInit(1, R"({"sdk_config_log_file_path":3})")),
    ROW(kOut, TIM_ERR_NOT_LOGGED_IN, TIMConvGetConvList(cb, t)),
    ROW(kOut, TIM_ERR_NOT_LOGGED_IN, TIMMsgSendNewMsg("bob", 1, kText, cb, t)),
    ROW(kOut, TIM_ERR_NOT_LOGGED_IN, TIMFriendshipGetFriendProfileList(cb, t)),
    ROW(kOut, TIM_ERR_NOT_LOGGED_IN, TIMGroupGetJoinedGroupList(cb, t)),
    ROW(kOut, TIM_ERR_NOT_LOGGED_IN, TIMLogout(cb, t)),
    ROW(kOut, TIM_ERR_INVALID_PARAM, TIMLogin(nullptr, "x", cb, t)),
    ROW(kOut, TIM_ERR_INVALID_PARAM, TIMLogin("alice", nullptr, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMMsgSendNewMsg(nullptr, 1, "{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMMsgSendNewMsg("", 1, "{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMMsgSendNewMsg(kLongId.c_str(), 1, "{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_CONV_TYPE, TIMMsgSendNewMsg("bob", 0, "{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_CONV_TYPE, TIMMsgSendNewMsg("bob", 3, "{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMMsgSendNewMsg("bob", 1, nullptr, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON, TIMMsgSendNewMsg("bob", 1, "{oops", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON, TIMMsgSendNewMsg("bob", 1, "[]", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON, TIMMsgSendNewMsg("bob", 1, "{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON,
        TIMMsgSendNewMsg("bob", 1, R"({"message_elem_array":[{"elem_type":"0"}]})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON,
        TIMMsgSendNewMsg(
            "bob", 1, R"({"message_elem_array":[{"elem_type":0,"text_elem_content":5}]})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON,
        TIMMsgSendNewMsg("bob", 1, R"({"message_elem_array":[{"elem_type":7}]})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMMsgSendNewMsg("bob", 1, kHugeJson.c_str(), cb, t)),
    ROW(kIn, TIM_ERR_CONV_NOT_FOUND,
        TIMMsgGetMsgList("nobody", 1, R"({"msg_getmsglist_param_count":5})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM,
        TIMMsgGetMsgList("bob", 1, R"({"msg_getmsglist_param_count":0})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON,
        TIMMsgGetMsgList("bob", 1, R"({"msg_getmsglist_param_count":"5"})", cb, t)),
    ROW(kIn, TIM_ERR_CONV_NOT_FOUND, TIMMsgReportReaded("nobody", 2, nullptr, cb, t)),
    ROW(kIn, TIM_ERR_CONV_NOT_FOUND, TIMConvDelete("nobody", 1, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_CONV_TYPE, TIMConvCreate("bob", 9, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM,
        TIMMsgDownloadElemToPath(R"({"msg_download_elem_param_id":"x"})", nullptr, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMMsgDownloadElemToPath("{}", "/tmp/x", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMFriendshipAddFriend("{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON,
        TIMFriendshipAddFriend(R"({"friendship_add_friend_param_identifier":1})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMFriendshipDeleteFriend(nullptr, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM,
        TIMFriendshipGetPendencyList(R"({"friendship_get_pendency_list_param_type":7})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON,
        TIMProfileGetUserProfileList(
            R"({"friendship_getprofilelist_param_identifier_array":"bob"})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM,
        TIMProfileModifySelfUserProfile(R"({"user_profile_item_add_permission":9})", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON, TIMGroupGetGroupInfoList("{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_JSON, TIMGroupGetGroupInfoList("[1,2]", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMGroupCreate("{}", cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMGroupDelete(nullptr, cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM, TIMGroupQuit(kLongId.c_str(), cb, t)),
    ROW(kIn, TIM_ERR_INVALID_PARAM,
        TIMGroupModifyGroupInfo(R"({"group_modify_info_param_group_id":"g"})", cb, t)),
    ROW(kIn, TIM_ERR_ALREADY_LOGGED_IN, TIMLogin("alice", "", cb, t)),
    ROW(kIn, TIM_ERR_ALREADY_LOGGED_IN, TIMLogin("bob", "sig", cb, t)),
    ROW(kIn, TIM_ERR_ALREADY_INITIALIZED, TIMInit(1, nullptr)),
    ROW(kIn, TIM_ERR_INVALID_JSON, TIMSetConfig("nope", cb, t)),
};

TEST_F(SdkTest, BadInputAndCallsOutOfOrderAreRefusedWithoutACallback) {
  auto run = [](State state) {
    for (const auto& c : kBadCalls) {
      if (c.state != state) continue;
      EXPECT_EQ(c.run(), c.expected) << c.call;
    }
  };
  ASSERT_EQ(TIMUninit(), TIM_SUCC);
  run(kOff);
  // Callback setters accept anything at any time, null included.
  TIMSetLogCallback(nullptr, nullptr);
  TIMAddRecvNewMsgCallback(nullptr, nullptr);
  TIMRemoveRecvNewMsgCallback(nullptr);
  ASSERT_EQ(TIMInit(1, nullptr), TIM_SUCC);
  run(kOut);
  SignIn("alice");
  OpenAccount("bob", "Bob");
  ASSERT_EQ(control.SendText("bob", kTIMConv_C2C, "alice", "hi"), 0);  // a conversation "bob"
  rec.WaitFor("new_msg");
  run(kIn);
  ASSERT_EQ(TIMLogout(OnResult, Tag("logout")), TIM_SUCC);
  EXPECT_EQ(rec.Count("result"), 2u);  // login and logout only
}

TEST_F(SdkTest, QueuedFailuresAnswerTheirCodeOnceAndChangeNothing) {
  SignIn("alice");
  OpenAccount("bob", "Bob");
  // Failures of the call itself: returned, not called back.
  for (const char* f : {"TIMConvGetConvList", "TIMLogout", "TIMFriendshipGetFriendProfileList",
                        "TIMGroupGetJoinedGroupList"})
    control.FailNextCall(f, 4242);
  EXPECT_EQ(TIMConvGetConvList(cb, t), 4242);
  EXPECT_EQ(TIMFriendshipGetFriendProfileList(cb, t), 4242);
  EXPECT_EQ(TIMGroupGetJoinedGroupList(cb, t), 4242);
  EXPECT_EQ(TIMLogout(cb, t), 4242);
  EXPECT_EQ(control.SignedInAccount(), "alice");
  EXPECT_EQ(Call("ok", TIMConvGetConvList).code, TIM_SUCC);
  // Failures of the result: accepted, then answered with the code.
  const struct {
    const char* function;
    std::function<int(void*)> call;
  } cases[] = {
      {"TIMConvCreate", [](void* t) { return TIMConvCreate("bob", 1, cb, t); }},
      {"TIMFriendshipAddFriend",
       [](void* t) {
         return TIMFriendshipAddFriend(R"({"friendship_add_friend_param_identifier":"bob"})", cb,
                                       t);
       }},
      {"TIMGroupCreate",
       [](void* t) { return TIMGroupCreate(R"({"create_group_param_group_name":"g"})", cb, t); }},
      {"TIMMsgSendNewMsg", [](void* t) { return TIMMsgSendNewMsg("bob", 1, kText, cb, t); }},
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

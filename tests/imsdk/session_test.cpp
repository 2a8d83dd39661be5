// Start-up, sign-in, the callback thread and its guarantees.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <set>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

using namespace std::chrono_literals;

TEST_F(SdkTest, LoginResultsArriveOnTheCallbackThread) {
  control.CreateAccount("carol", {"", "", kTIMAddPermission_NeedConfirm, "good"});
  const struct {
    const char* user;
    const char* sig;
    bool network_up;
    int code;
  } cases[] = {{"nobody", "x", true, TIM_ERR_ACCOUNT_NOT_FOUND},
               {"carol", "bad", true, TIM_ERR_USER_SIG_INVALID},
               {"carol", "good", false, TIM_ERR_NETWORK},
               {"carol", "good", true, TIM_SUCC}};
  for (const auto& c : cases) {
    control.SetNetworkUp(c.network_up);
    Record r =
        Call(std::string(c.user) + c.sig + std::to_string(c.network_up), TIMLogin, c.user, c.sig);
    EXPECT_EQ(r.code, c.code) << r.tag;
    EXPECT_NE(r.thread, std::this_thread::get_id()) << r.tag;
  }
  EXPECT_EQ(control.SignedInAccount(), "carol");
}

TEST_F(SdkTest, EventsArriveInOrderOnAnotherThreadAndNoneAfterLogoutReturns) {
  SignIn("alice");
  OpenAccount("bob");
  std::vector<uint64_t> sent(50);
  for (int i = 0; i < 50; ++i)
    ASSERT_EQ(control.SendText("bob", kTIMConv_C2C, "alice", std::to_string(i), &sent[i]), 0);
  ASSERT_EQ(TIMLogout(OnResult, Tag("logout")), TIM_SUCC);
  // Everything queued was delivered before TIMLogout returned, its result last.
  const size_t count = rec.All().size();
  EXPECT_EQ(rec.All().back().tag, "logout");
  auto got = rec.WaitFor("new_msg", 50);
  ASSERT_EQ(got.size(), 50u);
  std::set<std::thread::id> threads;
  for (size_t i = 0; i < got.size(); ++i) {
    Json::Value msg = Parse(got[i].json)[0];
    EXPECT_EQ(msg["message_unique_id"].asUInt64(), sent[i]);
    EXPECT_EQ(msg["message_elem_array"][0]["text_elem_content"].asString(), std::to_string(i));
    threads.insert(got[i].thread);
  }
  EXPECT_EQ(threads.size(), 1u);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0u);
  EXPECT_EQ(std::set<uint64_t>(sent.begin(), sent.end()).size(), sent.size());
  control.SendText("bob", kTIMConv_C2C, "alice", "after");
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(rec.All().size(), count);
  EXPECT_EQ(TIMLogout(OnResult, Tag("logout2")), TIM_ERR_NOT_LOGGED_IN);
}

std::atomic<bool> g_slow_running{false};
std::atomic<bool> g_slow_finished{false};

void SlowCallback(const char*, void*) {
  g_slow_running = true;
  std::this_thread::sleep_for(100ms);
  g_slow_finished = true;
}

TEST_F(SdkTest, UninitWaitsForARunningCallbackAndDropsTheRest) {
  SignIn("alice");
  OpenAccount("bob");
  TIMAddRecvNewMsgCallback(SlowCallback, nullptr);
  for (int i = 0; i < 5; ++i) control.SendText("bob", kTIMConv_C2C, "alice", "x");
  while (!g_slow_running) std::this_thread::sleep_for(1ms);
  ASSERT_EQ(TIMUninit(), TIM_SUCC);
  EXPECT_TRUE(g_slow_finished);
  size_t count = rec.All().size();
  std::this_thread::sleep_for(150ms);
  EXPECT_EQ(rec.All().size(), count);
  EXPECT_LT(rec.Count("new_msg"), 5u);  // the queued rest was discarded
  TIMRemoveRecvNewMsgCallback(SlowCallback);
}

TEST_F(SdkTest, FromACallbackUninitIsRefusedAndLogoutDiscardsTheQueue) {
  SignIn("alice");
  OpenAccount("bob");
  static std::atomic<int> uninit{-1}, logout{-1};
  TIMSetUserSigExpiredCallback(
      [](void*) {
        uninit = TIMUninit();
        logout = TIMLogout(OnResult, Tag("inner logout"));
      },
      nullptr);
  control.ExpireSignature();
  for (int i = 0; i < 5; ++i) control.SendText("bob", kTIMConv_C2C, "alice", "x");
  EXPECT_EQ(rec.Result("inner logout").code, TIM_SUCC);
  EXPECT_EQ(uninit, TIM_ERR_IN_CALLBACK);
  EXPECT_EQ(logout, TIM_SUCC);
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(rec.All().back().tag, "inner logout");
  EXPECT_EQ(control.SignedInAccount(), "");
  TIMSetUserSigExpiredCallback(nullptr, nullptr);
}

TEST_F(SdkTest, SessionEventsKickSignatureAndNetwork) {
  control.CreateAccount("dave", {"", "", kTIMAddPermission_NeedConfirm, "s1"});
  ASSERT_EQ(Call("login", TIMLogin, "dave", "s1").code, TIM_SUCC);
  control.SetNetworkUp(false);
  control.SetNetworkUp(true);
  auto network = rec.WaitFor("network", 3);
  ASSERT_EQ(network.size(), 3u);
  EXPECT_EQ(network[0].code, kTIMDisconnected);
  EXPECT_EQ(network[1].code, kTIMConnecting);
  EXPECT_EQ(network[2].code, kTIMConnected);
  EXPECT_TRUE(control.ExpireSignature());
  EXPECT_EQ(rec.WaitFor("sig_expired").size(), 1u);
  EXPECT_TRUE(control.KickSignedIn());
  EXPECT_EQ(rec.WaitFor("kicked").size(), 1u);
  EXPECT_EQ(control.SignedInAccount(), "");
  // The expired signature is refused until a new one is set.
  EXPECT_EQ(Call("relogin", TIMLogin, "dave", "s1").code, TIM_ERR_USER_SIG_INVALID);
  control.SetSignature("dave", "s2");
  EXPECT_EQ(Call("relogin2", TIMLogin, "dave", "s2").code, TIM_SUCC);
}

TEST_F(SdkTest, ConfigSetBeforeInitIsAnsweredOnceTheSdkRunsAndFiltersLogLines) {
  ASSERT_EQ(TIMUninit(), TIM_SUCC);
  ASSERT_EQ(TIMSetConfig(R"({"set_config_log_level":3,"set_config_callback_log_level":3,
      "set_config_user_config":{"user_config_is_read_receipt":true},
      "set_config_user_define_data":"1.3.4.5.6.7"})",
                         OnResult, Tag("early")),
            TIM_SUCC);
  EXPECT_EQ(TIMSetConfig("[1]", OnResult, Tag("bad")), TIM_ERR_INVALID_JSON);
  EXPECT_EQ(rec.Count("result"), 0u);  // nothing runs before the SDK does
  ASSERT_EQ(TIMInit(1400000001, "{}"), TIM_SUCC);
  Record result = rec.Result("early");
  EXPECT_EQ(result.code, TIM_SUCC);
  EXPECT_NE(result.thread, std::this_thread::get_id());
  EXPECT_EQ(Parse(result.json)["set_config_user_define_data"].asString(), "1.3.4.5.6.7");
  EXPECT_EQ(rec.Count("result"), 1u);  // the refused one is never answered
  rec.Clear();
  SignIn("alice");  // its info line (level 2) stays below level 3
  EXPECT_EQ(rec.Count("log"), 0u);
  Json::Value later = CallJson("later", TIMSetConfig, R"({"set_config_user_define_data":"2"})");
  EXPECT_EQ(later["set_config_user_define_data"].asString(), "2");
}

TEST_F(SdkTest, CallLogHasOneLinePerCallAndCallback) {
  std::string path = Scratch("calls.jsonl");
  std::remove(path.c_str());
  setenv("IMSDK_CALL_LOG", path.c_str(), 1);
  SignIn("alice");
  Call("convs", TIMConvGetConvList);
  ASSERT_EQ(TIMLogout(OnResult, Tag("logout")), TIM_SUCC);
  unsetenv("IMSDK_CALL_LOG");
  std::ifstream in(path);
  std::vector<Json::Value> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(Parse(line));
  ASSERT_EQ(lines.size(), 6u);
  const char* names[] = {"TIMLogin", "TIMConvGetConvList", "TIMLogout"};
  for (size_t i = 0; i < 6; ++i)
    EXPECT_EQ(lines[i][i % 2 ? "callback" : "call"].asString(), names[i / 2]) << i;
  EXPECT_EQ(lines[0]["params"]["user_id"].asString(), "alice");
  EXPECT_EQ(lines[0]["params"]["user_sig"].asString(), "***");
  EXPECT_EQ(lines[3]["json"].asString(), "[]");
}

}  // namespace
}  // namespace imsdk_test

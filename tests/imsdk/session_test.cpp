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

TEST_F(SdkTest, LoginResultArrivesOnTheCallbackThreadNotTheCaller) {
  control.CreateAccount("alice");
  ASSERT_EQ(TIMLogin("alice", "sig", OnResult, Tag("login")), TIM_SUCC);
  Record r = rec.Result("login");
  EXPECT_EQ(r.code, TIM_SUCC);
  EXPECT_NE(r.thread, std::this_thread::get_id());
  EXPECT_EQ(control.SignedInAccount(), "alice");
}

TEST_F(SdkTest, OneAccountPerProcess) {
  SignIn("alice");
  control.CreateAccount("bob");
  EXPECT_EQ(TIMLogin("bob", "sig", OnResult, Tag("second")), TIM_ERR_ALREADY_LOGGED_IN);
  EXPECT_EQ(TIMLogin("alice", "sig", OnResult, Tag("again")), TIM_ERR_ALREADY_LOGGED_IN);
}

TEST_F(SdkTest, LoginFailuresArriveAsResultCodes) {
  imsdk::AccountOptions options;
  options.signature = "good";
  control.CreateAccount("carol", options);
  struct Case {
    const char* user;
    const char* sig;
    int code;
  } cases[] = {{"nobody", "x", TIM_ERR_ACCOUNT_NOT_FOUND},
               {"carol", "bad", TIM_ERR_USER_SIG_INVALID},
               {"carol", "good", TIM_SUCC}};
  for (const auto& c : cases) {
    std::string tag = std::string("login ") + c.user + c.sig;
    ASSERT_EQ(TIMLogin(c.user, c.sig, OnResult, Tag(tag)), TIM_SUCC);
    EXPECT_EQ(rec.Result(tag).code, c.code) << tag;
  }
}

TEST_F(SdkTest, LogoutDeliversEverythingQueuedAndNothingAfter) {
  SignIn("alice");
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, ""});
  for (int i = 0; i < 50; ++i)
    control.SendText("bob", kTIMConv_C2C, "alice", "m" + std::to_string(i));
  ASSERT_EQ(TIMLogout(OnResult, Tag("logout")), TIM_SUCC);
  // Already delivered when TIMLogout returned: all fifty messages and the result.
  EXPECT_EQ(rec.Count("new_msg"), 50u);
  size_t count = rec.All().size();
  EXPECT_EQ(rec.All().back().tag, "logout");
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
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, ""});
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
  EXPECT_EQ(TIMUninit(), TIM_ERR_NOT_INITIALIZED);
}

TEST_F(SdkTest, UninitFromACallbackIsRefused) {
  static std::atomic<int> code{-1};
  TIMSetConfig(
      "{}", [](int32_t, const char*, const char*, void*) { code = TIMUninit(); }, nullptr);
  while (code == -1) std::this_thread::sleep_for(1ms);
  EXPECT_EQ(code, TIM_ERR_IN_CALLBACK);
}

TEST_F(SdkTest, LogoutFromACallbackDiscardsTheQueuedCallbacks) {
  SignIn("alice");
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, ""});
  static std::atomic<int> code{-1};
  TIMSetUserSigExpiredCallback([](void*) { code = TIMLogout(OnResult, Tag("inner logout")); },
                               nullptr);
  control.ExpireSignature();
  for (int i = 0; i < 5; ++i) control.SendText("bob", kTIMConv_C2C, "alice", "x");
  EXPECT_EQ(rec.Result("inner logout").code, TIM_SUCC);
  EXPECT_EQ(code, TIM_SUCC);
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(rec.All().back().tag, "inner logout");
  EXPECT_EQ(control.SignedInAccount(), "");
  TIMSetUserSigExpiredCallback(nullptr, nullptr);
}

TEST_F(SdkTest, SessionEventsKickSignatureAndNetwork) {
  imsdk::AccountOptions options;
  options.signature = "s1";
  control.CreateAccount("dave", options);
  ASSERT_EQ(TIMLogin("dave", "s1", OnResult, Tag("login")), TIM_SUCC);
  ASSERT_EQ(rec.Result("login").code, TIM_SUCC);
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
  ASSERT_EQ(TIMLogin("dave", "s1", OnResult, Tag("relogin")), TIM_SUCC);
  EXPECT_EQ(rec.Result("relogin").code, TIM_ERR_USER_SIG_INVALID);
  control.SetSignature("dave", "s2");
  ASSERT_EQ(TIMLogin("dave", "s2", OnResult, Tag("relogin2")), TIM_SUCC);
  EXPECT_EQ(rec.Result("relogin2").code, TIM_SUCC);
}

TEST_F(SdkTest, LoginWhileNetworkDownFailsWith9519) {
  control.CreateAccount("erin");
  control.SetNetworkUp(false);
  ASSERT_EQ(TIMLogin("erin", "x", OnResult, Tag("login")), TIM_SUCC);
  EXPECT_EQ(rec.Result("login").code, TIM_ERR_NETWORK);
}

TEST_F(SdkTest, EventsArriveInTheOrderTheyHappened) {
  SignIn("alice");
  control.CreateAccount("bob", {"Bob", "", kTIMAddPermission_AllowAny, ""});
  std::vector<uint64_t> sent;
  for (int i = 0; i < 20; ++i) {
    uint64_t id = 0;
    ASSERT_EQ(control.SendText("bob", kTIMConv_C2C, "alice", std::to_string(i), &id), 0);
    sent.push_back(id);
  }
  auto got = rec.WaitFor("new_msg", 20);
  ASSERT_EQ(got.size(), 20u);
  std::set<std::thread::id> threads;
  for (size_t i = 0; i < got.size(); ++i) {
    Json::Value msg = Parse(got[i].json)[0];
    EXPECT_EQ(msg["message_unique_id"].asUInt64(), sent[i]);
    EXPECT_EQ(msg["message_elem_array"][0]["text_elem_content"].asString(), std::to_string(i));
    threads.insert(got[i].thread);
  }
  EXPECT_EQ(threads.size(), 1u);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0u);
  std::set<uint64_t> unique(sent.begin(), sent.end());
  EXPECT_EQ(unique.size(), sent.size());
}

TEST_F(SdkTest, SetConfigReportsTheConfigurationAndFiltersLogLines) {
  ASSERT_EQ(TIMSetConfig(R"({"set_config_log_level":3,"set_config_callback_log_level":3,
      "set_config_user_config":{"user_config_is_read_receipt":true},
      "set_config_user_define_data":"1.3.4.5.6.7"})",
                         OnResult, Tag("config")),
            TIM_SUCC);
  Json::Value config = Parse(rec.Result("config").json);
  EXPECT_EQ(config["set_config_user_define_data"].asString(), "1.3.4.5.6.7");
  SignIn("alice");  // its info line (level 2) stays below level 3
  EXPECT_EQ(rec.Count("log"), 0u);
}

TEST_F(SdkTest, CallLogHasOneLinePerCallAndCallback) {
  std::string path = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/calls.jsonl";
  std::remove(path.c_str());
  setenv("IMSDK_CALL_LOG", path.c_str(), 1);
  SignIn("alice");
  ASSERT_EQ(TIMConvGetConvList(OnResult, Tag("convs")), TIM_SUCC);
  rec.Result("convs");
  ASSERT_EQ(TIMLogout(OnResult, Tag("logout")), TIM_SUCC);
  unsetenv("IMSDK_CALL_LOG");
  std::ifstream in(path);
  std::vector<Json::Value> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(Parse(line));
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0]["call"].asString(), "TIMLogin");
  EXPECT_EQ(lines[0]["params"]["user_id"].asString(), "alice");
  EXPECT_EQ(lines[0]["params"]["user_sig"].asString(), "***");
  EXPECT_EQ(lines[1]["callback"].asString(), "TIMLogin");
  EXPECT_EQ(lines[2]["call"].asString(), "TIMConvGetConvList");
  EXPECT_EQ(lines[3]["callback"].asString(), "TIMConvGetConvList");
  EXPECT_EQ(lines[3]["json"].asString(), "[]");
  EXPECT_EQ(lines[4]["call"].asString(), "TIMLogout");
  EXPECT_EQ(lines[5]["callback"].asString(), "TIMLogout");
}

}  // namespace
}  // namespace imsdk_test

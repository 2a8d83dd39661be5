// Sign-in, sign-out, configuration and the connection's faults.
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

#include "tests/xmpp/xmpp_fixture.h"

namespace xmpp_test {
namespace {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Tag;

TEST_F(XmppTest, SignsInAndOutAndInAgain) {
  EXPECT_EQ(SignIn("alice").code, TIM_SUCC);
  EXPECT_EQ(TIMLogin("alice", "x", OnResult, Tag("twice")), TIM_ERR_ALREADY_LOGGED_IN);
  EXPECT_EQ(TIMLogout(OnResult, Tag("out")), TIM_SUCC);
  EXPECT_EQ(rec.Result("out").code, TIM_SUCC);
  EXPECT_EQ(TIMConvGetConvList(OnResult, Tag("list")), TIM_ERR_NOT_LOGGED_IN);
  EXPECT_EQ(SignIn("alice").code, TIM_SUCC);
}

struct BadSignIn {
  const char* name;
  std::string config;  // imsdk.json ("" keeps the working one); PORT is the server's port
  std::string password;
  int code;
};

void PrintTo(const BadSignIn& c, std::ostream* os) {
  *os << c.name;
}

class XmppSignInFailure : public XmppTest, public ::testing::WithParamInterface<BadSignIn> {};

TEST_P(XmppSignInFailure, GivesAFailedResultNeverAHang) {
  const BadSignIn& c = GetParam();
  if (!c.config.empty()) {
    TIMUninit();
    std::string text = c.config;
    if (size_t at = text.find("PORT"); at != std::string::npos) {
      text.replace(at, 4, std::to_string(FreePort()));
    }
    std::ofstream(config_folder_ + "/imsdk.json") << text;
    Json::Value init;
    init["sdk_config_config_file_path"] = config_folder_;
    ASSERT_EQ(TIMInit(1, imsdk_test::Write(init).c_str()), TIM_SUCC);
  }
  const auto started = std::chrono::steady_clock::now();
  imsdk_test::Record r = SignIn("bob", c.password);
  EXPECT_EQ(r.code, c.code);
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(16));
  // The SDK stays usable: a correct sign-in afterwards works when the
  // configuration does.
  if (c.config.empty()) {
    EXPECT_EQ(SignIn("bob").code, TIM_SUCC);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, XmppSignInFailure,
    ::testing::Values(
        BadSignIn{"WrongPassword", "", "not-the-password", TIM_ERR_USER_SIG_INVALID},
        BadSignIn{"NobodyListens",
                  R"({"backend":"xmpp","domain":"localhost","host":"127.0.0.1","port":PORT})", "",
                  TIM_ERR_NETWORK},
        BadSignIn{"NotJson", "{backend: xmpp", "", TIM_ERR_NETWORK},
        BadSignIn{"UnknownBackend", R"({"backend":"carrier-pigeon","domain":"localhost"})", "",
                  TIM_ERR_NETWORK},
        BadSignIn{"PortOfWrongType", R"({"backend":"xmpp","domain":"localhost","port":"5222"})", "",
                  TIM_ERR_NETWORK}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(XmppTest, ASecondSignInElsewhereKicksThisOneOffline) {
  ASSERT_EQ(SignIn("carol").code, TIM_SUCC);
  // Same account, same resource: the server replaces this session.
  PeerProcess other(Server(), "carol", "desktop");
  ASSERT_EQ(rec.WaitFor("kicked").size(), 1u);
  EXPECT_EQ(TIMConvGetConvList(OnResult, Tag("after kick")), TIM_ERR_NOT_LOGGED_IN);
}

TEST_F(XmppTest, ServerLossAndReturnAreNetworkEventsAndNothingIsLost) {
  ASSERT_EQ(SignIn("nora").code, TIM_SUCC);
  Server().Stop();
  auto lost = rec.WaitFor("network");
  ASSERT_FALSE(lost.empty());
  EXPECT_EQ(lost[0].code, kTIMDisconnected);
  EXPECT_EQ(SendText("otto", "while away").code, TIM_ERR_NETWORK);

  ASSERT_TRUE(Server().Restart());
  auto events = rec.WaitFor("network", 3);
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[2].code, kTIMConnected);
  auto otto = StartPeer("otto");
  otto->Send("nora", "after the return");
  auto got = rec.WaitFor("new_msg");
  ASSERT_EQ(got.size(), 1u);
  EXPECT_EQ(Parse(got[0].json)[0]["message_elem_array"][0]["text_elem_content"].asString(),
            "after the return");
  EXPECT_EQ(SendText("otto", "back again").code, TIM_SUCC);
  EXPECT_FALSE(
      otto->WaitFor([](const Json::Value& e) { return e["body"].asString() == "back again"; })
          .isNull());
}

// The archive may forget the last message the SDK saw (reset, or expired
// while the user was away). Having asked the archive, the session gets no
// offline copies from the server: what was missed must still arrive, once.
TEST_F(XmppTest, MissedMessagesArriveWhenTheArchiveForgotTheLastOneSeen) {
  ASSERT_EQ(SignIn("gina").code, TIM_SUCC);
  auto hank = StartPeer("hank");
  hank->Send("gina", "seen");
  ASSERT_EQ(rec.WaitFor("new_msg").size(), 1u);
  ASSERT_EQ(TIMLogout(OnResult, Tag("out")), TIM_SUCC);
  ASSERT_EQ(rec.Result("out").code, TIM_SUCC);

  ASSERT_TRUE(ChangeStoredSetting("gina", "last_archive_id", "forgotten"));
  hank->Send("gina", "missed");
  Json::Value quit;
  quit["cmd"] = "quit";
  hank->Command(quit);  // the message is at the server before hank leaves
  hank->WaitForEvent("disconnected");

  rec.Clear();
  ASSERT_EQ(SignIn("gina").code, TIM_SUCC);
  auto got = rec.WaitFor("new_msg");
  ASSERT_EQ(got.size(), 1u);
  auto messages = Parse(got[0].json);
  ASSERT_EQ(messages.size(), 1u);  // "seen" is not delivered twice
  EXPECT_EQ(messages[0]["message_elem_array"][0]["text_elem_content"].asString(), "missed");
}

}  // namespace
}  // namespace xmpp_test

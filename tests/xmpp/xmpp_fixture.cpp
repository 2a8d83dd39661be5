#include "tests/xmpp/xmpp_fixture.h"

#include <filesystem>

namespace xmpp_test {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Record;
using imsdk_test::Tag;

ProsodyServer& Server() {
  static ProsodyServer server;
  if (!server.running() && server.folder().empty()) server.Start(kAccounts);
  return server;
}

void XmppTest::SetUp() {
  ASSERT_TRUE(Server().running()) << "no Prosody (scripts/install-deps installs it)";
  rec.Clear();
  rec.SetPatience(std::chrono::seconds(20));
  imsdk_test::RegisterAllCallbacks();
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  config_folder_ =
      imsdk_test::Scratch(std::string("xmpp-") + info->test_suite_name() + "-" + info->name());
  std::filesystem::remove_all(config_folder_);
  Server().WriteSdkConfig(config_folder_);
  Json::Value config;
  config["sdk_config_config_file_path"] = config_folder_;
  ASSERT_EQ(TIMInit(1, imsdk_test::Write(config).c_str()), TIM_SUCC);
}

void XmppTest::TearDown() {
  TIMUninit();
  if (!Server().running()) Server().Restart();
}

Record XmppTest::SignIn(const std::string& user, const std::string& password) {
  const std::string tag = NextTag("login " + user);
  const std::string pw = password.empty() ? ProsodyServer::PasswordOf(user) : password;
  EXPECT_EQ(TIMLogin(user.c_str(), pw.c_str(), OnResult, Tag(tag)), TIM_SUCC);
  return rec.Result(tag);
}

std::unique_ptr<PeerProcess> XmppTest::StartPeer(const std::string& user) {
  auto peer = std::make_unique<PeerProcess>(Server(), user);
  EXPECT_TRUE(peer->ready()) << "the slixmpp peer " << user << " did not sign in";
  return peer;
}

Record XmppTest::SendText(const std::string& to, const std::string& text) {
  const std::string tag = NextTag("send " + to);
  EXPECT_EQ(TIMMsgSendNewMsg(to.c_str(), kTIMConv_C2C, imsdk_test::TextMsg(text).c_str(), OnResult,
                             Tag(tag)),
            TIM_SUCC);
  return rec.Result(tag);
}

Json::Value XmppTest::History(const std::string& peer, int count, const Json::Value& last,
                              int conv_type) {
  Json::Value param;
  param["msg_getmsglist_param_count"] = count;
  param["msg_getmsglist_param_last_msg"] = last.isNull() ? Json::Value(Json::objectValue) : last;
  const std::string tag = NextTag("history " + peer);
  EXPECT_EQ(TIMMsgGetMsgList(peer.c_str(), conv_type, imsdk_test::Write(param).c_str(), OnResult,
                             Tag(tag)),
            TIM_SUCC);
  Record r = rec.Result(tag);
  EXPECT_EQ(r.code, TIM_SUCC) << r.json;
  return Parse(r.json);
}

}  // namespace xmpp_test

namespace xmpp_test {

Json::Value XmppTest::WaitForRecord(const std::string& name,
                                    const std::function<bool(const Json::Value&)>& match) {
  for (size_t n = 1;; ++n) {
    auto records = rec.WaitFor(name, n);
    if (records.size() < n) return Json::Value();  // none came in time
    Json::Value value = Parse(records[n - 1].json);
    if (value.isArray()) {
      for (const auto& item : value) {
        if (match(item)) return item;
      }
    } else if (match(value)) {
      return value;
    }
  }
}

}  // namespace xmpp_test

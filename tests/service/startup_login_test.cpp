// Start-up, sign-in, failed sign-in, kicked offline, sign-out.
#include <json/json.h>

#include <filesystem>
#include <fstream>

#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "service/module_counters.h"
#include "store/chat_db.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

Json::Value ParseJson(const std::string& text) {
  Json::Value value;
  Json::CharReaderBuilder builder;
  std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  std::string errors;
  reader->parse(text.data(), text.data() + text.size(), &value, &errors);
  return value;
}

class CallLog {
 public:
  CallLog() {
    path_ = testing::TempDir() + "service_call_log_" +
            testing::UnitTest::GetInstance()->current_test_info()->name() + ".jsonl";
    std::filesystem::remove(path_);
    setenv("IMSDK_CALL_LOG", path_.c_str(), 1);
  }
  // Function names of the API calls, in order.
  std::vector<std::string> Calls() const {
    std::vector<std::string> names;
    for (const Json::Value& line : Lines()) {
      if (line.isMember("call")) names.push_back(line["call"].asString());
    }
    return names;
  }
  std::vector<Json::Value> CallsOf(const std::string& function) const {
    std::vector<Json::Value> found;
    for (const Json::Value& line : Lines()) {
      if (line["call"].asString() == function) found.push_back(line["params"]);
    }
    return found;
  }

 private:
  std::vector<Json::Value> Lines() const {
    std::vector<Json::Value> lines;
    std::ifstream in(path_);
    for (std::string line; std::getline(in, line);) lines.push_back(ParseJson(line));
    return lines;
  }
  std::string path_;
};

using StartupTest = ServiceTest;

TEST_F(StartupTest, StartsTheSdkInOrderThenSignsIn) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  std::vector<std::string> calls = log.Calls();
  const std::vector<std::string> expected = {"TIMSetConfig",
                                             "TIMInit",
                                             "TIMAddRecvNewMsgCallback",
                                             "TIMSetMsgReadedReceiptCallback",
                                             "TIMSetMsgRevokeCallback",
                                             "TIMSetMsgElemUploadProgressCallback",
                                             "TIMSetGroupTipsEventCallback",
                                             "TIMSetNetworkStatusListenerCallback",
                                             "TIMSetKickedOfflineCallback",
                                             "TIMSetUserSigExpiredCallback",
                                             "TIMSetOnAddFriendCallback",
                                             "TIMSetOnDeleteFriendCallback",
                                             "TIMSetUpdateFriendProfileCallback",
                                             "TIMSetFriendAddRequestCallback",
                                             "TIMSetLogCallback",
                                             "TIMLogin"};
  ASSERT_GE(calls.size(), expected.size());
  EXPECT_EQ(std::vector<std::string>(calls.begin(), calls.begin() + expected.size()), expected);

  // After the sign-in result: friends, conversations, joined groups, in that order.
  auto position = [&calls](const std::string& name) {
    return std::find(calls.begin(), calls.end(), name) - calls.begin();
  };
  EXPECT_LT(position("TIMLogin"), position("TIMFriendshipGetFriendProfileList"));
  EXPECT_LT(position("TIMFriendshipGetFriendProfileList"), position("TIMConvGetConvList"));
  EXPECT_LT(position("TIMConvGetConvList"), position("TIMGroupGetJoinedGroupList"));
  EXPECT_LT(position("TIMGroupGetJoinedGroupList"), position("TIMProfileModifySelfUserProfile"));

  Json::Value init = log.CallsOf("TIMInit").at(0);
  EXPECT_EQ(init["sdk_app_id"].asUInt64(), CChatTools::kImAppId);
  Json::Value folders = ParseJson(init["json_sdk_config"].asString());
  platform::DataFolders& data = platform::DataFolders::Instance();
  EXPECT_EQ(folders["sdk_config_log_file_path"].asString(),
            platform::Utf16ToUtf8(data.GetLogPath()));
  EXPECT_EQ(folders["sdk_config_config_file_path"].asString(),
            platform::Utf16ToUtf8(data.GetConfigPath()));
}

TEST_F(StartupTest, ConfigurationHasExactlyFourKeysAndNoProxy) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  Json::Value config = ParseJson(log.CallsOf("TIMSetConfig").at(0)["json_config"].asString());
  std::vector<std::string> keys = config.getMemberNames();
  std::sort(keys.begin(), keys.end());
  EXPECT_EQ(keys,
            (std::vector<std::string>{"set_config_callback_log_level", "set_config_log_level",
                                      "set_config_user_config", "set_config_user_define_data"}));
  EXPECT_EQ(config["set_config_log_level"].asInt(), 3);
  EXPECT_EQ(config["set_config_callback_log_level"].asInt(), 3);
  EXPECT_TRUE(config["set_config_user_config"]["user_config_is_read_receipt"].asBool());
  EXPECT_EQ(config["set_config_user_config"].size(), 1u);
  EXPECT_EQ(config["set_config_user_define_data"].asString(), "1.3.4.5.6.7");
}

TEST_F(StartupTest, SignInOpensTheUsersDatabaseAndAsksForConfirmedFriendRequests) {
  ASSERT_TRUE(SignIn());
  WString expected = platform::JoinPath(platform::DataFolders::Instance().GetDbPath(), u"Chat.db");
  EXPECT_TRUE(CChatDb::Instance().IsOpen());
  EXPECT_EQ(CChatDb::Instance().GetPath(), platform::ToNativePath(expected));
  EXPECT_TRUE(std::filesystem::exists(platform::ToNativePath(expected)));
  EXPECT_EQ(tools->UserId(), u"10001");
  // The profile change is answered on the SDK's thread; wait for it.
  ASSERT_TRUE(PumpUntil([this] {
    return ParseJson(engine.ProfileJson("10001"))["user_profile_add_permission"].asInt() == 2;
  }));
}

TEST_F(StartupTest, AddPermissionIsSetAgainOnEverySignIn) {
  imsdk::AccountOptions options;
  options.add_permission = kTIMAddPermission_AllowAny;
  engine.UpdateProfile("10001", options);
  ASSERT_TRUE(SignIn());
  EXPECT_TRUE(PumpUntil([this] {
    return ParseJson(engine.ProfileJson("10001"))["user_profile_add_permission"].asInt() == 2;
  }));
}

TEST_F(StartupTest, SecondSignInWhileSignedInIsRefusedWithoutTheSdk) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  size_t logins = log.CallsOf("TIMLogin").size();
  EXPECT_FALSE(service::SignIn(*tools, u"10002", u"sig"));
  EXPECT_EQ(log.CallsOf("TIMLogin").size(), logins);
  EXPECT_EQ(service::Counters().logged_in.load(), 1);
}

TEST_F(StartupTest, SignInAfterLogoutDoesNotStartTheSdkAgain) {
  CallLog log;
  ASSERT_TRUE(SignIn());
  service::InternalLogout(*tools, true);
  EXPECT_FALSE(CChatDb::Instance().IsOpen());
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
  ClearSeen();
  ASSERT_TRUE(SignIn());
  EXPECT_EQ(log.CallsOf("TIMInit").size(), 1u);
  EXPECT_EQ(log.CallsOf("TIMSetConfig").size(), 1u);
  EXPECT_EQ(log.CallsOf("TIMLogin").size(), 2u);
  EXPECT_EQ(service::Counters().initialised.load(), 1);
}

TEST_F(StartupTest, LogoutWithoutSignInStillCallsTheSdkAndLowersTheCounter) {
  CallLog log;
  service::InternalLogout(*tools, true);
  EXPECT_EQ(service::Counters().logged_in.load(), -1);
  EXPECT_EQ(log.CallsOf("TIMLogout").size(), 1u);
  EXPECT_TRUE(traces.Contains("登出失败!!!"));
  // At -1 a sign-in is not refused; it leaves the counter at 0.
  ASSERT_TRUE(SignIn());
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
}

TEST_F(StartupTest, RefusedLoginReturnsFalseAndKeepsTheCounter) {
  engine.FailNextCall("TIMLogin", TIM_ERR_INVALID_PARAM);
  EXPECT_FALSE(SignIn("10001", false));
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
  EXPECT_TRUE(traces.Contains("登录失败!!!"));
}

TEST_F(StartupTest, FailedSignInTellsTheUserAndLogsOut) {
  engine.SetSignature("10001", "right");
  window.SetVisible(true);
  ASSERT_TRUE(SignIn("10001", false));  // accepted; refused in the callback
  ASSERT_TRUE(PumpUntil([this] { return !window.Boxes().empty() && window.Hides() == 1; }));
  Box box = window.Boxes().front();
  EXPECT_EQ(box.owner, service::BoxOwner::kHostWindow);
  EXPECT_EQ(box.title, u"登录");
  EXPECT_EQ(box.text, u"IM 聊天功能登录失败,请尝试重新进入聊天功能！！！");
  EXPECT_EQ(window.Resets(), 1);
  EXPECT_FALSE(CChatDb::Instance().IsOpen());
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
  EXPECT_TRUE(tools->UserId().empty());
  EXPECT_TRUE(traces.Contains("登陆 失败!!!  code:70001"));
}

TEST_F(StartupTest, KickedOfflineTellsTheUserAndSignsOut) {
  ASSERT_TRUE(SignIn());
  window.SetVisible(true);
  ASSERT_TRUE(engine.KickSignedIn());
  ASSERT_TRUE(PumpUntil([this] { return window.Hides() == 1; }));
  std::vector<Box> boxes = window.Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].owner, service::BoxOwner::kChatWindow);
  EXPECT_EQ(boxes[0].title, u"登录通知");
  EXPECT_EQ(boxes[0].text, u"您的账号在其他设备登录!!!");
  EXPECT_EQ(window.Resets(), 1);
  EXPECT_FALSE(CChatDb::Instance().IsOpen());
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
  EXPECT_EQ(tools->RecentCount(), 0u);
  EXPECT_TRUE(traces.Contains("Kicked Offline"));
}

TEST_F(StartupTest, NetworkStatusIsStoredAndAnnounced) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  engine.SetNetworkUp(false);
  ASSERT_TRUE(PumpUntil([this] { return CountSeen(platform::msg::kNetworkStatusChanged) >= 1; }));
  EXPECT_EQ(tools->NetworkStatus(), static_cast<uint32_t>(kTIMDisconnected));
  engine.SetNetworkUp(true);
  ASSERT_TRUE(PumpUntil([this] { return tools->NetworkStatus() == kTIMConnected; }));
}

}  // namespace
}  // namespace service_test

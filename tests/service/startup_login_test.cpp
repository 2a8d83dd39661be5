// Start-up, sign-in, failed sign-in, kicked offline, sign-out.
#include <filesystem>

#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "service/module_counters.h"
#include "store/chat_db.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

using StartupTest = ServiceTest;

int AddPermissionOf(imsdk::EngineControl& engine) {
  return ParseJsonText(engine.ProfileJson("10001"))["user_profile_add_permission"].asInt();
}

TEST_F(StartupTest, StartsTheSdkInOrderWithItsConfigurationThenSignsIn) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  std::vector<std::string> calls = log.Calls();
  const std::string expected =
      "TIMSetConfig TIMInit TIMAddRecvNewMsgCallback TIMSetMsgReadedReceiptCallback "
      "TIMSetMsgRevokeCallback TIMSetMsgElemUploadProgressCallback TIMSetGroupTipsEventCallback "
      "TIMSetNetworkStatusListenerCallback TIMSetKickedOfflineCallback "
      "TIMSetUserSigExpiredCallback TIMSetOnAddFriendCallback TIMSetOnDeleteFriendCallback "
      "TIMSetUpdateFriendProfileCallback TIMSetFriendAddRequestCallback TIMSetLogCallback TIMLogin";
  ASSERT_GE(calls.size(), 16u);
  EXPECT_EQ(Joined({calls.begin(), calls.begin() + 16}), expected);
  auto at = [&calls](const char* name) {
    return static_cast<size_t>(std::find(calls.begin(), calls.end(), name) - calls.begin());
  };
  EXPECT_LT(at("TIMFriendshipGetFriendProfileList"), at("TIMConvGetConvList"));
  EXPECT_LT(at("TIMConvGetConvList"), at("TIMGroupGetJoinedGroupList"));
  EXPECT_LT(at("TIMGroupGetJoinedGroupList"), at("TIMProfileModifySelfUserProfile"));
  EXPECT_LT(at("TIMProfileModifySelfUserProfile"), calls.size());

  Json::Value init = log.CallsOf("TIMInit").at(0);
  EXPECT_EQ(init["sdk_app_id"].asUInt64(), CChatTools::kImAppId);
  Json::Value folders = ParseJsonText(init["json_sdk_config"].asString());
  platform::DataFolders& data = platform::DataFolders::Instance();
  EXPECT_EQ(folders["sdk_config_log_file_path"].asString(),
            platform::Utf16ToUtf8(data.GetLogPath()));
  EXPECT_EQ(folders["sdk_config_config_file_path"].asString(),
            platform::Utf16ToUtf8(data.GetConfigPath()));

  Json::Value config = SdkCallLog::Param(log.CallsOf("TIMSetConfig").at(0), "json_config");
  EXPECT_EQ(Keys(config),
            (std::vector<std::string>{"set_config_callback_log_level", "set_config_log_level",
                                      "set_config_user_config", "set_config_user_define_data"}));
  EXPECT_EQ(config["set_config_log_level"].asInt(), 3);
  EXPECT_EQ(config["set_config_callback_log_level"].asInt(), 3);
  EXPECT_EQ(Keys(config["set_config_user_config"]),
            std::vector<std::string>{"user_config_is_read_receipt"});
  EXPECT_TRUE(config["set_config_user_config"]["user_config_is_read_receipt"].asBool());
  EXPECT_EQ(config["set_config_user_define_data"].asString(), "1.3.4.5.6.7");
}

TEST_F(StartupTest, SignInOpensTheUsersDatabaseAndAlwaysAsksForConfirmedRequests) {
  imsdk::AccountOptions options;
  options.add_permission = kTIMAddPermission_AllowAny;
  engine.UpdateProfile("10001", options);
  ASSERT_TRUE(SignIn());
  WString expected = platform::JoinPath(platform::DataFolders::Instance().GetDbPath(), u"Chat.db");
  EXPECT_TRUE(CChatDb::Instance().IsOpen());
  EXPECT_EQ(CChatDb::Instance().GetPath(), platform::ToNativePath(expected));
  EXPECT_TRUE(std::filesystem::exists(platform::ToNativePath(expected)));
  EXPECT_EQ(tools->UserId(), u"10001");
  EXPECT_TRUE(PumpUntil([this] { return AddPermissionOf(engine) == 2; }));
}

TEST_F(StartupTest, SecondSignInIsRefusedAndSignInAfterLogoutDoesNotInitAgain) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  EXPECT_FALSE(service::SignIn(*tools, u"10002", u"sig"));
  EXPECT_EQ(log.CallsOf("TIMLogin").size(), 1u);
  EXPECT_EQ(service::Counters().logged_in.load(), 1);

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

TEST_F(StartupTest, RefusedLoginAndLogoutWithoutSignInKeepTheCounterUsable) {
  SdkCallLog log;
  engine.FailNextCall("TIMLogin", TIM_ERR_INVALID_PARAM);
  EXPECT_FALSE(SignIn("10001", false));
  EXPECT_EQ(service::Counters().logged_in.load(), 0);

  service::InternalLogout(*tools, true);
  EXPECT_EQ(service::Counters().logged_in.load(), -1);
  EXPECT_EQ(log.CallsOf("TIMLogout").size(), 1u);
  ASSERT_TRUE(SignIn());  // not refused at -1; back to 0
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
}

struct SignOutCase {
  const char* name;
  bool kicked;  // else the sign-in fails in its callback
  service::BoxOwner owner;
  const char16_t* title;
  const char16_t* text;
  const char* trace;
};

void PrintTo(const SignOutCase& c, std::ostream* os) {
  *os << c.name;
}

class SignOutTest : public ServiceTest, public testing::WithParamInterface<SignOutCase> {};

TEST_P(SignOutTest, TellsTheUserLogsOutAndClosesTheDatabase) {
  const SignOutCase& c = GetParam();
  if (c.kicked) {
    ASSERT_TRUE(SignIn());
    window.visible = true;
    ASSERT_TRUE(engine.KickSignedIn());
  } else {
    engine.SetSignature("10001", "right");
    window.visible = true;
    ASSERT_TRUE(SignIn("10001", false));  // accepted; refused in the callback
  }
  ASSERT_TRUE(PumpUntil([this] { return window.hides == 1; }));
  std::vector<Box> boxes = window.Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].owner, c.owner);
  EXPECT_EQ(boxes[0].title, c.title);
  EXPECT_EQ(boxes[0].text, c.text);
  EXPECT_EQ(window.resets, 1);
  EXPECT_FALSE(CChatDb::Instance().IsOpen());
  EXPECT_EQ(service::Counters().logged_in.load(), 0);
  EXPECT_TRUE(tools->UserId().empty());
  EXPECT_EQ(tools->RecentCount(), 0u);
  EXPECT_TRUE(traces.Contains(c.trace));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SignOutTest,
    testing::Values(SignOutCase{"FailedSignIn", false, service::BoxOwner::kHostWindow, u"登录",
                                u"IM 聊天功能登录失败,请尝试重新进入聊天功能！！！",
                                "登陆 失败!!!  code:70001"},
                    SignOutCase{"KickedOffline", true, service::BoxOwner::kChatWindow, u"登录通知",
                                u"您的账号在其他设备登录!!!", "Kicked Offline"}),
    [](const testing::TestParamInfo<SignOutCase>& info) { return info.param.name; });

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

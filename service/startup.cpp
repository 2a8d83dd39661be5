// Start-up: the SDK's configuration, TIMInit, the SDK event callbacks and the
// two callbacks the host gets.
#include <json/json.h>

#include "host/startup_registration.h"
#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/sdk_text.h"
#include "service/sending_json.h"

void CChatTools::Init() {
  platform::Trace("CChatTools::Init enter!!!!!!");
  platform::Trace("初始化 IM SDK 开始!!!");
  // The configuration must reach the SDK before TIMInit.
  SetConfig();
  InitSdk();
  platform::Trace("初始化 IM SDK 结束!!!");
  RegisterSdkCallbacks();
  RegisterHostCallbacks();
  platform::Trace("CChatTools::Init exit!!!!!!");
}

Json::Value CChatTools::BuildUserConfig() {
  Json::Value config;
  config["set_config_log_level"] = 3;
  config["set_config_callback_log_level"] = 3;
  config["set_config_user_config"]["user_config_is_read_receipt"] = true;
  config["set_config_user_define_data"] = "1.3.4.5.6.7";
  // A proxy (HTTP on the loopback, port 12639, or SOCKS5) is left out on
  // purpose: it is to come from configuration, not from this version.
  return config;
}

void CChatTools::SetConfig() {
  platform::Trace("设置额外的用户配置开始!!!");
  std::string text = service::CompactText(BuildUserConfig());
  int ret = TIMSetConfig(text.c_str(), &CChatTools::TIMSetConfigFunc, this);
  if (ret != 0) {
    platform::Trace("设置额外的用户配置失败 error:%d", ret);
  } else {
    platform::Trace("设置额外的用户配置结束!!!");
  }
}

void CChatTools::InitSdk() {
  platform::Trace("IM SDK 初始化 开始!!!");
  platform::DataFolders& folders = platform::DataFolders::Instance();
  Json::Value config;
  config["sdk_config_log_file_path"] = platform::Utf16ToUtf8(folders.GetLogPath());
  config["sdk_config_config_file_path"] = platform::Utf16ToUtf8(folders.GetConfigPath());
  int ret = TIMInit(kImAppId, service::CompactText(config).c_str());
  if (ret != 0) {
    // Start-up goes on: the callbacks are registered all the same and
    // TIMInit is not tried again in this process.
    platform::Trace("TIMInit 接口调用错误，IM SDK 初始化失败 error code:%d", ret);
  } else {
    platform::Trace("IM SDK 初始化 结束!!!");
  }
}

void CChatTools::RegisterSdkCallbacks() {
  TIMAddRecvNewMsgCallback(&CChatTools::TIMAddRecvNewMsgCallbackFunc, this);
  TIMSetMsgReadedReceiptCallback(&CChatTools::TIMSetMsgReadedReceiptCallbackFunc, this);
  TIMSetMsgRevokeCallback(&CChatTools::TIMSetMsgRevokeCallbackFunc, this);
  TIMSetMsgElemUploadProgressCallback(&CChatTools::TIMSetMsgElemUploadProgressCallbackFunc, this);
  TIMSetGroupTipsEventCallback(&CChatTools::TIMSetGroupTipsEventCallbackFunc, this);
  TIMSetNetworkStatusListenerCallback(&CChatTools::TIMSetNetworkStatusListenerCallbackFunc, this);
  TIMSetKickedOfflineCallback(&CChatTools::TIMSetKickedOfflineCallbackFunc, this);
  TIMSetUserSigExpiredCallback(&CChatTools::TIMSetUserSigExpiredCallbackFunc, this);
  TIMSetOnAddFriendCallback(&CChatTools::TIMSetOnAddFriendCallbackFunc, this);
  TIMSetOnDeleteFriendCallback(&CChatTools::TIMSetOnDeleteFriendCallbackFunc, this);
  TIMSetUpdateFriendProfileCallback(&CChatTools::TIMSetUpdateFriendProfileCallbackFunc, this);
  TIMSetFriendAddRequestCallback(&CChatTools::TIMSetFriendAddRequestCallbackFunc, this);
  TIMSetLogCallback(&CChatTools::TIMSetLogCallbackFunc, this);
  callbacks_registered_.store(true);
}

void CChatTools::UnregisterSdkCallbacks() {
  // Only the module's one object lives to the end of the process; an object
  // that goes away earlier must not be called back.
  if (!callbacks_registered_.exchange(false)) return;
  TIMRemoveRecvNewMsgCallback(&CChatTools::TIMAddRecvNewMsgCallbackFunc);
  TIMSetMsgReadedReceiptCallback(nullptr, nullptr);
  TIMSetMsgRevokeCallback(nullptr, nullptr);
  TIMSetMsgElemUploadProgressCallback(nullptr, nullptr);
  TIMSetGroupTipsEventCallback(nullptr, nullptr);
  TIMSetNetworkStatusListenerCallback(nullptr, nullptr);
  TIMSetKickedOfflineCallback(nullptr, nullptr);
  TIMSetUserSigExpiredCallback(nullptr, nullptr);
  TIMSetOnAddFriendCallback(nullptr, nullptr);
  TIMSetOnDeleteFriendCallback(nullptr, nullptr);
  TIMSetUpdateFriendProfileCallback(nullptr, nullptr);
  TIMSetFriendAddRequestCallback(nullptr, nullptr);
  TIMSetLogCallback(nullptr, nullptr);
}

void CChatTools::RegisterHostCallbacks() {
  host::RegisterModuleCallbacks(
      [this](const WString& payload) { return sendChatDrawingMsg(payload); },
      [this](std::vector<RecentConversationEntry>* list) { ProvideRecentConversations(list); });
}

void CChatTools::TIMSetConfigFunc(int32_t code, const char* desc, const char* json, void*) {
  platform::Trace("TIMSetConfigFunc enter!!!!!!");
  if (code == 0) {
    platform::Trace("设置额外的用户配置 成功!!! cb code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), service::OrEmpty(desc), service::OrEmpty(json));
  } else {
    platform::Trace("设置额外的用户配置 失败!!! cb code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), service::OrEmpty(desc), service::OrEmpty(json));
  }
  platform::Trace("TIMSetConfigFunc exit!!!!!!");
}

void CChatTools::TIMSetLogCallbackFunc(int32_t, const char*, void*) {
  // The SDK writes its own log file; its lines are not repeated here.
}

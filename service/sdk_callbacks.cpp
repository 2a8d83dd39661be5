// The SDK's event callbacks. They run on the SDK's callback thread, copy what
// they are given and post it to the chat window; the few that act here touch
// only state that is safe from any thread.
#include <json/json.h>

#include <memory>

#include "imsdk/im_sdk.h"
#include "platform/json_text.h"
#include "platform/trace.h"
#include "records/group_parser.h"
#include "service/chat_tools.h"
#include "service/module_counters.h"
#include "service/posting.h"
#include "service/sdk_text.h"

using service::OrEmpty;

namespace {

using CallbackTrace = service::EnterExitTrace;

void PostEvent(CChatTools& tools, uint32_t kind, const char* json, uint8_t flag1 = 0,
               uint8_t flag2 = 0) {
  SdkEventRecord record;
  record.kind = kind;
  record.text = OrEmpty(json);
  record.flag1 = flag1;
  record.flag2 = flag2;
  // Stamped now: a logout between here and the window's turn drops it.
  service::PostPayload<platform::msg::kSdkEvent>(tools.ChatWindow(), tools.CurrentSession(),
                                                 std::move(record));
}

bool ParseJson(const char* text, Json::Value& out, std::string& errors) {
  return platform::ParseJsonText(OrEmpty(text), out, &errors);
}

}  // namespace

void CChatTools::TIMAddRecvNewMsgCallbackFunc(const char* json, void* user) {
  CallbackTrace trace("TIMAddRecvNewMsgCallbackFunc");
  if (user == nullptr) return;
  platform::Trace("接收到新消息回调 回调信息 json_param:%s", OrEmpty(json));
  PostEvent(*From(user), kSdkEventNewMessages, json, 1, 1);
}

void CChatTools::TIMSetMsgReadedReceiptCallbackFunc(const char*, void*) {
  // Read receipts are not shown.
}

void CChatTools::TIMSetMsgRevokeCallbackFunc(const char* json, void* user) {
  CallbackTrace trace("TIMSetMsgRevokeCallbackFunc");
  if (user == nullptr) return;
  platform::Trace("TIMSetMsgRevokeCallbackFunc:\n%s", OrEmpty(json));
  // Revoked messages stay in the view and in the store; the text is only read.
  Json::Value locators;
  std::string errors;
  if (!ParseJson(json, locators, errors)) {
    platform::Trace(">>>>>>>>>>>>>>>>>>>>>>>>>>TIMSetMsgRevokeCallbackFunc%s", errors.c_str());
  }
}

void CChatTools::TIMSetGroupTipsEventCallbackFunc(const char* json, void* user) {
  CallbackTrace trace("TIMSetGroupTipsEventCallbackFunc");
  platform::Trace("%s", OrEmpty(json));
  if (user == nullptr) return;
  Json::Value value;
  std::string errors;
  if (!ParseJson(json, value, errors)) {
    platform::Trace("解析json数据错误！error:%s", errors.c_str());
    return;
  }
  // One event object, or an array of them.
  bool parsed = true;
  auto parseOne = [&parsed](const Json::Value& item) {
    GroupTipsEvent event;
    parsed = records::ParseGroupTipsEvent(item, event) && parsed;
  };
  if (value.isArray()) {
    for (const Json::Value& item : value) parseOne(item);
  } else if (value.isObject()) {
    parseOne(value);
  } else {
    parsed = false;
  }
  if (!parsed) return;
  CChatTools& self = *From(user);
  self.LoadHostGroups();
  self.RequestJoinedGroupList();
}

void CChatTools::TIMSetNetworkStatusListenerCallbackFunc(int32_t status, int32_t code,
                                                         const char* desc, void* user) {
  CallbackTrace trace("TIMSetNetworkStatusListenerCallbackFunc");
  platform::Trace("status %u code:%u desc:%s", static_cast<unsigned>(status),
                  static_cast<unsigned>(code), OrEmpty(desc));
  if (user == nullptr) return;
  CChatTools& self = *From(user);
  self.network_status_.store(static_cast<uint32_t>(status));
  service::Post<platform::msg::kNetworkStatusChanged>(self.ChatWindow());
}

void CChatTools::TIMSetKickedOfflineCallbackFunc(void* user) {
  CallbackTrace trace("TIMSetKickedOfflineCallbackFunc");
  platform::Trace("Kicked Offline");
  if (user == nullptr) return;
  CChatTools& self = *From(user);
  self.Window().ShowMessageBox(service::BoxOwner::kChatWindow, u"登录通知",
                               u"您的账号在其他设备登录!!!");
  service::InternalLogout(self, true);
}

void CChatTools::TIMSetUserSigExpiredCallbackFunc(void*) {
  CallbackTrace trace("TIMSetUserSigExpiredCallbackFunc");
  // The session runs on until the SDK ends it; no new sign-in is attempted.
  platform::Trace("票据过期回调");
}

void CChatTools::TIMSetOnAddFriendCallbackFunc(const char*, void* user) {
  CallbackTrace trace("TIMSetOnAddFriendCallbackFunc");
  if (user == nullptr) return;
  From(user)->RequestFriendList();
}

void CChatTools::TIMSetOnDeleteFriendCallbackFunc(const char* json, void* user) {
  CallbackTrace trace("TIMSetOnDeleteFriendCallbackFunc");
  if (user == nullptr) return;
  CChatTools& self = *From(user);
  service::PostPayload<platform::msg::kFriendDeleted>(self.ChatWindow(), self.CurrentSession(),
                                                      OrEmpty(json));
}

void CChatTools::TIMSetUpdateFriendProfileCallbackFunc(const char*, void* user) {
  CallbackTrace trace("TIMSetUpdateFriendProfileCallbackFunc");
  if (user == nullptr) return;
  From(user)->RequestFriendList();
}

void CChatTools::TIMSetFriendAddRequestCallbackFunc(const char* json, void* user) {
  CallbackTrace trace("TIMSetFriendAddRequestCallbackFunc");
  if (user == nullptr) return;
  PostEvent(*From(user), kSdkEventFriendAddRequest, json);
}

void CChatTools::TIMConvGetConvListFunc(int32_t code, const char* desc, const char* json,
                                        void* user) {
  CallbackTrace trace("TIMConvGetConvListFunc");
  if (code != 0) {
    platform::Trace("获取最近联系人的会话列表 失败!!! code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), OrEmpty(desc), OrEmpty(json));
    return;
  }
  if (user == nullptr) return;
  PostEvent(*From(user), kSdkEventConversationList, json);
}

void CChatTools::TIMFriendshipGetFriendProfileListFunc(int32_t code, const char* desc,
                                                       const char* json, void* user) {
  CallbackTrace trace("TIMFriendshipGetFriendProfileListFunc");
  if (code != 0) {
    platform::Trace("获取好友列表 失败!!! code:%u ,desc:%s ,json_param:%s",
                    static_cast<unsigned>(code), OrEmpty(desc), OrEmpty(json));
    return;
  }
  if (user == nullptr) return;
  PostEvent(*From(user), kSdkEventFriendProfileList, json);
}

void CChatTools::TIMMsgGetMsgListFunc(int32_t code, const char*, const char* json, void* user) {
  CallbackTrace trace("TIMMsgGetMsgListFunc");
  if (code != 0 || user == nullptr) return;
  CChatTools& self = *From(user);
  service::PostPayload<platform::msg::kMessageListArrived>(self.ChatWindow(), self.CurrentSession(),
                                                           OrEmpty(json));
}

void CChatTools::IMMsgReportReadedFunc(int32_t code, const char* desc, const char* json, void*) {
  CallbackTrace trace("IMMsgReportReadedFunc");
  auto ucode = static_cast<unsigned>(code);
  platform::Trace("消息已读上报 回调信息!!! code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                  OrEmpty(json));
  if (code != 0) {
    platform::Trace("消息已读上报 失败!!! code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                    OrEmpty(json));
  }
}

void CChatTools::TIMConvDeleteFunc(int32_t code, const char* desc, const char* json, void*) {
  CallbackTrace trace("TIMConvDeleteFunc");
  auto ucode = static_cast<unsigned>(code);
  platform::Trace("删除会话 信息回调! code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                  OrEmpty(json));
  if (code == 0) {
    platform::Trace("删除会话 成功! code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                    OrEmpty(json));
  } else {
    platform::Trace("删除会话 失败! code:%u ,desc:%s ,json_param:%s", ucode, OrEmpty(desc),
                    OrEmpty(json));
  }
}

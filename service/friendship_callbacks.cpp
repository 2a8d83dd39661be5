// Results of the friendship requests, on the SDK's thread. Those that change
// caches do it under the cache lock and tell the window by posting.
#include <json/json.h>

#include <algorithm>
#include <memory>

#include "platform/trace.h"
#include "records/json_reader.h"
#include "records/profile_parser.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "service/sdk_text.h"

using service::OrEmpty;

namespace {

unsigned U(int32_t code) {
  return static_cast<unsigned>(code);
}

void TraceResult(int32_t code, const char* desc, const char* json, const char* succeeded,
                 const char* failed) {
  platform::Trace(code == 0 ? succeeded : failed, U(code), OrEmpty(desc), OrEmpty(json));
}

}  // namespace

void CChatTools::AddFriendFunc(int32_t code, const char* desc, const char* json, void*) {
  TraceResult(code, desc, json, "添加好友 成功!!! cb code:%u ,desc:%s ,json_params:%s",
              "添加好友 失败!!! cb code:%u ,desc:%s ,json_params:%s");
}

void CChatTools::PendencyListFunc1(int32_t code, const char* desc, const char* json, void* user) {
  if (code != 0) {
    platform::Trace("获取好友添加请求未决信息 失败!!! cb code:%u ,desc:%s ,json_params:%s", U(code),
                    OrEmpty(desc), OrEmpty(json));
    return;
  }
  if (user != nullptr)
    From(user)->OnPendencyPage(OrEmpty(json), platform::msg::kFriendRequestsChanged);
}

void CChatTools::PendencyListFunc2(int32_t code, const char* desc, const char* json, void* user) {
  if (code != 0) {
    platform::Trace("获取好友添加请求未决信息 失败!!! cb code:%u ,desc:%s ,json_params:%s", U(code),
                    OrEmpty(desc), OrEmpty(json));
    return;
  }
  if (user != nullptr) {
    From(user)->OnPendencyPage(OrEmpty(json), platform::msg::kFriendRequestListChanged);
  }
}

void CChatTools::OnPendencyPage(const std::string& json, unsigned notice) {
  Json::Value root;
  if (!records::ParseJsonText(json, root) || !root.isObject()) {
    platform::Trace("解析json数据错误！error:%s", "pendency page is not a JSON object");
    return;
  }
  PendencyPage page;
  records::ParsePendencyPage(root, page);
  std::vector<WString> unknown;
  const service::SessionStamp session = CurrentSession();
  if (!session_.WhileCurrent(session,
                             [&] { unknown = friends_.ReplaceRequests(std::move(page)); })) {
    return;
  }
  // The list shows the requesters' pictures.
  if (!unknown.empty()) RequestUserProfiles(unknown);
  service::Post(ChatWindow(), notice);
}

void CChatTools::ReportPendencyReadedFunc(int32_t code, const char* desc, const char* json, void*) {
  TraceResult(code, desc, json,
              "上报好友添加请求未决信息已读成功!!! cb code:%u ,desc:%s ,json_params:%s",
              "上报好友添加请求未决信息已读失败!!! cb code:%u ,desc:%s ,json_params:%s");
}

void CChatTools::DeleteFriendFunc(int32_t code, const char* desc, const char* json, void*) {
  TraceResult(code, desc, json, "删除好友 成功!!! cb code:%u ,desc:%s ,json_params:%s",
              "删除好友 失败!!! cb code:%u ,desc:%s ,json_params:%s");
}

void CChatTools::ModifyFriendProfileFunc(int32_t code, const char* desc, const char* json,
                                         void* user) {
  TraceResult(code, desc, json, "更新好友资料 成功!!! cb code:%u ,desc:%s ,json_params:%s",
              "更新好友资料 失败!!! cb code:%u ,desc:%s ,json_params:%s");
  // The friend cache is rebuilt from the list, on the window thread.
  if (code == 0 && user != nullptr) From(user)->RequestFriendList();
}

void CChatTools::UserProfileListFunc(int32_t code, const char* desc, const char* json, void* user) {
  if (code != 0) {
    platform::Trace("获取指定用户列表的个人资料 失败! code:%u ,desc:%s ,json_params:%s", U(code),
                    OrEmpty(desc), OrEmpty(json));
    return;
  }
  platform::Trace("获取指定用户列表的个人资料 成功! code:%u ,desc:%s ,json_params:%s", U(code),
                  OrEmpty(desc), OrEmpty(json));
  if (user != nullptr) From(user)->OnUserProfiles(OrEmpty(json));
}

void CChatTools::OnUserProfiles(const std::string& json) {
  std::vector<UserProfile> profiles;
  if (!records::ParseUserProfileArray(json, profiles)) {
    platform::Trace("解析json数据错误！error:%s", "profile list is not a JSON array");
    return;
  }
  session_.WhileCurrent(CurrentSession(), [&] { friends_.StoreProfiles(std::move(profiles)); });
}

void CChatTools::HandleFriendAddRequestFunc(int32_t code, const char* desc, const char* json,
                                            void* user) {
  if (code == 0) {
    platform::Trace("处理加好友的请求成功!!!");
  } else {
    platform::Trace("处理加好友的请求 失败!!! cb code:%u ,desc:%s ,json_params:%s", U(code),
                    OrEmpty(desc), OrEmpty(json));
  }
  if (user == nullptr) return;
  FriendRequestResult result;
  result.code = code;
  result.desc = platform::Utf8ToUtf16(OrEmpty(desc));
  Json::Value entry;
  if (records::ParseJsonText(OrEmpty(json), entry) && entry.isObject()) {
    records::GuardRecord("FriendRequestResult", [&] {
      records::Read(entry, "friend_result_identifier", result.identifier);
      int32_t entryCode = 0;
      records::Read(entry, "friend_result_code", entryCode);
      if (code == 0) result.code = entryCode;
      WString entryDesc;
      records::Read(entry, "friend_result_desc", entryDesc);
      if (!entryDesc.empty()) result.desc = entryDesc;
    });
  } else if (json != nullptr && *json != '\0') {
    platform::Trace("解析json数据错误！error:%s", "friend request result is not a JSON object");
  }
  CChatTools& self = *From(user);
  service::PostPayload<platform::msg::kFriendRequestHandled>(
      self.ChatWindow(), self.CurrentSession(), std::move(result));
}

// The friend list as the conversation side reads it, and the add permission
// set at every sign-in.
#include <json/json.h>

#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "records/profile_parser.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "service/sdk_text.h"
#include "service/sending_json.h"

int CChatTools::RequestFriendList() {
  platform::Trace("获取好友列表 开始!!!");
  int ret =
      TIMFriendshipGetFriendProfileList(&CChatTools::TIMFriendshipGetFriendProfileListFunc, this);
  if (ret != 0) {
    platform::Trace("获取好友列表 失败!!! ret : %d", ret);
  } else {
    platform::Trace("获取好友列表 结束!!!");
  }
  return ret;
}

void CChatTools::UpdateFriendList(const std::string& json) {
  UpdateFriendList(json, CurrentSession());
}

void CChatTools::UpdateFriendList(const std::string& json, service::SessionStamp session) {
  std::vector<FriendsList_Stru> friends;
  if (!records::ParseFriendArray(json, friends)) {
    platform::Trace("解析json数据错误！error:%s", "friend list is not a JSON array");
    return;
  }
  if (session_.WhileCurrent(session, [&] { friends_.ReplaceFriends(std::move(friends)); })) {
    service::Post<platform::msg::kFriendListChanged>(ChatWindow());
  }
}

int CChatTools::ModifySelfAddPermission() {
  Json::Value param;
  param["user_profile_item_add_permission"] = static_cast<int>(kTIMAddPermission_NeedConfirm);
  int ret = TIMProfileModifySelfUserProfile(
      service::CompactText(param).c_str(),
      [](int32_t code, const char* desc, const char* json, void*) {
        if (code != 0) {
          platform::Trace("修改自己的资料 失败!!! code:%u ,desc:%s ,json_param:%s",
                          static_cast<unsigned>(code), service::OrEmpty(desc),
                          service::OrEmpty(json));
        }
      },
      this);
  if (ret != 0) platform::Trace("修改自己的资料 失败!!! ret:%d", ret);
  return ret;
}

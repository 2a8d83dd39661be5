// The friendship service's requests: one parameter object each, one SDK call,
// the service object as user data. Results arrive in friendship_callbacks.cpp.
#include <json/json.h>

#include "host/account_id.h"
#include "host/host_access.h"
#include "imsdk/im_sdk.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/sdk_text.h"
#include "service/sending_json.h"

using service::Utf8;

int CChatTools::AddFriend(const WString& id, const WString& source, const WString&) {
  const WString self = UserId();
  std::optional<UserProfile> own = FindProfile(self);
  const WString prefix = own && !own->nick_name.empty() ? own->nick_name : self;
  Json::Value param;
  param["friendship_add_friend_param_identifier"] = Utf8(id);
  param["friendship_add_friend_param_friend_type"] = 1;
  param["friendship_add_friend_param_add_source"] = Utf8(source);
  param["friendship_add_friend_param_add_wording"] = Utf8(prefix + u" 请求添加你为好友。");
  int ret =
      TIMFriendshipAddFriend(service::CompactText(param).c_str(), &CChatTools::AddFriendFunc, this);
  if (ret != 0) platform::Trace("添加好友 失败!!! ret:%d", ret);
  return ret;
}

int CChatTools::RequestPendencyList(int variant) {
  Json::Value param;
  param["friendship_get_pendency_list_param_type"] = 0;
  param["friendship_get_pendency_list_param_start_seq"] = Json::UInt64(friends_.PendencySequence());
  TIMCommCallback done = variant == kPendencyListRefresh ? &CChatTools::PendencyListFunc2
                                                         : &CChatTools::PendencyListFunc1;
  int ret = TIMFriendshipGetPendencyList(service::CompactText(param).c_str(), done, this);
  if (ret != 0) platform::Trace("获取好友添加请求未决信息 失败!!! ret:%d", ret);
  return ret;
}

int CChatTools::ReportPendencyReaded(uint64_t timeStamp) {
  int ret =
      TIMFriendshipReportPendencyReaded(timeStamp, &CChatTools::ReportPendencyReadedFunc, this);
  if (ret != 0) platform::Trace("上报好友添加请求未决信息已读失败!!! ret:%d", ret);
  return ret;
}

int CChatTools::DeleteFriend(const WString& id) {
  // The host's friendship goes first; it has nothing to report back.
  if (std::optional<int32_t> accountId = host::AccountIdOfImUser(id)) {
    if (HostCloudService* cloud = host::AcquireCloudService("CChatTools::DeleteFriend  error ")) {
      cloud->RemoveCloudFriend(*accountId);
    }
  } else {
    platform::Trace("DeleteFriend: %s is no host account", Utf8(id).c_str());
  }
  Json::Value param;
  param["friendship_delete_friend_param_identifier_array"].append(Utf8(id));
  param["friendship_delete_friend_param_friend_type"] = 0;
  int ret = TIMFriendshipDeleteFriend(service::CompactText(param).c_str(),
                                      &CChatTools::DeleteFriendFunc, this);
  if (ret != 0) {
    platform::Trace("删除好友 失败!!! ret:%d", ret);
    return ret;
  }
  friends_.RemoveFriends({id});
  return ret;
}

int CChatTools::ModifyFriendRemark(const WString& id, const WString& remark) {
  Json::Value item;
  item["friend_profile_item_remark"] = Utf8(remark);
  // The friend's groups stay as they are.
  Json::Value groups(Json::arrayValue);
  if (std::optional<FriendsList_Stru> found = FindFriend(id)) {
    for (const WString& group : found->group_names) groups.append(Utf8(group));
  }
  item["friend_profile_item_group_name_array"] = groups;
  Json::Value param;
  param["friendship_modify_friend_profile_param_identifier"] = Utf8(id);
  param["friendship_modify_friend_profile_param_item"] = item;
  int ret = TIMFriendshipModifyFriendProfile(service::CompactText(param).c_str(),
                                             &CChatTools::ModifyFriendProfileFunc, this);
  if (ret != 0) platform::Trace("更新好友资料 失败!!! ret:%d", ret);
  return ret;
}

int CChatTools::RequestUserProfiles(const std::vector<WString>& ids) {
  Json::Value param;
  Json::Value array(Json::arrayValue);
  for (const WString& id : ids) array.append(Utf8(id));
  param["friendship_getprofilelist_param_identifier_array"] = array;
  param["friendship_getprofilelist_param_force_update"] = false;
  int ret = TIMProfileGetUserProfileList(service::CompactText(param).c_str(),
                                         &CChatTools::UserProfileListFunc, this);
  if (ret != 0) platform::Trace("获取指定用户列表的个人资料 失败! ret:%d", ret);
  return ret;
}

int CChatTools::HandleFriendAddRequest(const WString& id, const WString& remark,
                                       const WString& groupName) {
  Json::Value param;
  param["friend_respone_identifier"] = Utf8(id);
  param["friend_respone_action"] = 1;
  param["friend_respone_remark"] = Utf8(remark);
  param["friend_respone_group_name"] = Utf8(groupName);
  int ret = TIMFriendshipHandleFriendAddRequest(service::CompactText(param).c_str(),
                                                &CChatTools::HandleFriendAddRequestFunc, this);
  if (ret != 0) platform::Trace("处理加好友的请求 失败!!! ret:%d", ret);
  return ret;
}

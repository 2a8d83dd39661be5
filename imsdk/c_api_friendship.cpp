// Friendship and profile functions.
#include "imsdk/call_log.h"
#include "imsdk/sdk_runtime.h"

using namespace imsdk;

extern "C" {

int TIMFriendshipGetFriendProfileList(TIMCommCallback cb, void* user_data) {
  return ForwardPlain("TIMFriendshipGetFriendProfileList", cb, user_data, &Backend::GetFriends);
}

int TIMFriendshipAddFriend(const char* json_add_friend_param, TIMCommCallback cb, void* user_data) {
  return ForwardJson("TIMFriendshipAddFriend", json_add_friend_param, Json::objectValue, cb,
                     user_data, &Backend::AddFriend);
}

int TIMFriendshipDeleteFriend(const char* json_delete_friend_param, TIMCommCallback cb,
                              void* user_data) {
  return ForwardJson("TIMFriendshipDeleteFriend", json_delete_friend_param, Json::objectValue, cb,
                     user_data, &Backend::DeleteFriends);
}

int TIMFriendshipModifyFriendProfile(const char* json_modify_param, TIMCommCallback cb,
                                     void* user_data) {
  return ForwardJson("TIMFriendshipModifyFriendProfile", json_modify_param, Json::objectValue, cb,
                     user_data, &Backend::ModifyFriend);
}

int TIMFriendshipGetPendencyList(const char* json_get_pendency_list_param, TIMCommCallback cb,
                                 void* user_data) {
  return ForwardJson("TIMFriendshipGetPendencyList", json_get_pendency_list_param,
                     Json::objectValue, cb, user_data, &Backend::GetPendencies);
}

int TIMFriendshipReportPendencyReaded(uint64_t time_stamp, TIMCommCallback cb, void* user_data) {
  Json::Value log(Json::objectValue);
  log["time_stamp"] = Json::UInt64(time_stamp);
  return Forward("TIMFriendshipReportPendencyReaded", log, [&](Runtime& rt) -> int {
    return rt.backend().ReportPendenciesRead(
        time_stamp, rt.Result("TIMFriendshipReportPendencyReaded", cb, user_data));
  });
}

int TIMFriendshipHandleFriendAddRequest(const char* json_handle_param, TIMCommCallback cb,
                                        void* user_data) {
  return ForwardJson("TIMFriendshipHandleFriendAddRequest", json_handle_param, Json::objectValue,
                     cb, user_data, &Backend::HandleFriendRequest);
}

int TIMProfileGetUserProfileList(const char* json_get_user_profile_list_param, TIMCommCallback cb,
                                 void* user_data) {
  return ForwardJson("TIMProfileGetUserProfileList", json_get_user_profile_list_param,
                     Json::objectValue, cb, user_data, &Backend::GetProfiles);
}

int TIMProfileModifySelfUserProfile(const char* json_modify_self_user_profile_param,
                                    TIMCommCallback cb, void* user_data) {
  return ForwardJson("TIMProfileModifySelfUserProfile", json_modify_self_user_profile_param,
                     Json::objectValue, cb, user_data, &Backend::ModifySelfProfile);
}

}  // extern "C"

// Group functions.
#include "imsdk/call_log.h"
#include "imsdk/sdk_runtime.h"

using namespace imsdk;

namespace {

using GroupRequest = int (Backend::*)(const std::string&, ResultFn);

int ForwardGroupId(const char* function, const char* group_id, TIMCommCallback cb, void* user_data,
                   GroupRequest method) {
  Json::Value log(Json::objectValue);
  if (CallLogEnabled()) log["group_id"] = LogText(group_id);
  return Forward(function, log, [&](Runtime& rt) -> int {
    std::string id;
    if (int code = CheckId(group_id, &id)) return code;
    return (rt.backend().*method)(id, rt.Result(function, cb, user_data));
  });
}

}  // namespace

extern "C" {

int TIMGroupGetJoinedGroupList(TIMCommCallback cb, void* user_data) {
  return ForwardPlain("TIMGroupGetJoinedGroupList", cb, user_data, &Backend::GetJoinedGroups);
}

int TIMGroupGetGroupInfoList(const char* json_group_id_array, TIMCommCallback cb, void* user_data) {
  return ForwardJson("TIMGroupGetGroupInfoList", json_group_id_array, Json::arrayValue, cb,
                     user_data, &Backend::GetGroupInfos);
}

int TIMGroupCreate(const char* json_group_create_param, TIMCommCallback cb, void* user_data) {
  return ForwardJson("TIMGroupCreate", json_group_create_param, Json::objectValue, cb, user_data,
                     &Backend::CreateGroup);
}

int TIMGroupDelete(const char* group_id, TIMCommCallback cb, void* user_data) {
  return ForwardGroupId("TIMGroupDelete", group_id, cb, user_data, &Backend::DisbandGroup);
}

int TIMGroupQuit(const char* group_id, TIMCommCallback cb, void* user_data) {
  return ForwardGroupId("TIMGroupQuit", group_id, cb, user_data, &Backend::QuitGroup);
}

int TIMGroupInviteMember(const char* json_group_invite_param, TIMCommCallback cb, void* user_data) {
  return ForwardJson("TIMGroupInviteMember", json_group_invite_param, Json::objectValue, cb,
                     user_data, &Backend::InviteMembers);
}

int TIMGroupDeleteMember(const char* json_group_delete_param, TIMCommCallback cb, void* user_data) {
  return ForwardJson("TIMGroupDeleteMember", json_group_delete_param, Json::objectValue, cb,
                     user_data, &Backend::RemoveMembers);
}

int TIMGroupModifyGroupInfo(const char* json_group_modify_info_param, TIMCommCallback cb,
                            void* user_data) {
  return ForwardJson("TIMGroupModifyGroupInfo", json_group_modify_info_param, Json::objectValue, cb,
                     user_data, &Backend::ModifyGroup);
}

int TIMGroupGetMemberInfoList(const char* json_group_getmeminfos_param, TIMCommCallback cb,
                              void* user_data) {
  return ForwardJson("TIMGroupGetMemberInfoList", json_group_getmeminfos_param, Json::objectValue,
                     cb, user_data, &Backend::GetMembers);
}

}  // extern "C"

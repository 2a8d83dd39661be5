#include "records/group_tips_reader.h"

namespace records {

bool ParseGroupTipGroupChangeInfo(const Json::Value& json, GroupTipGroupChangeInfoStru& out) {
  return GuardRecord("GroupTipGroupChangeInfoStru", [&] {
    Read(json, "group_tips_group_change_info_flag", out.flag);
    Read(json, "group_tips_group_change_info_value", out.value);
    Read(json, "group_tips_group_change_info_key", out.key);
  });
}

bool ParseGroupTipMemberChangeInfo(const Json::Value& json, GroupTipMemberChangeInfo& out) {
  return GuardRecord("GroupTipMemberChangeInfo", [&] {
    Read(json, "group_tips_member_change_info_identifier", out.identifier);
    Read(json, "group_tips_member_change_info_shutupTime", out.shutup_time);
  });
}

void ReadUserProfileBrief(const Json::Value& json, UserProfileBrief& out) {
  Read(json, "user_profile_nick_name", out.nick_name);
  Read(json, "user_profile_face_url", out.face_url);
}

}  // namespace records

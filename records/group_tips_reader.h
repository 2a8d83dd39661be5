#pragma once
// Fields shared by the group-tips element and the group-tips event. Internal
// to the records library.

#include <json/json.h>

#include "records/elem_records.h"
#include "records/json_reader.h"

namespace records {

bool ParseGroupTipGroupChangeInfo(const Json::Value& json, GroupTipGroupChangeInfoStru& out);
bool ParseGroupTipMemberChangeInfo(const Json::Value& json, GroupTipMemberChangeInfo& out);
void ReadUserProfileBrief(const Json::Value& json, UserProfileBrief& out);

// The element reads tip_type as signed and the event as unsigned; the field
// types decide.
template <typename Tips>
void ReadGroupTipsFields(const Json::Value& json, Tips& out) {
  Read(json, "group_tips_elem_tip_type", out.tip_type);
  Read(json, "group_tips_elem_op_user", out.op_user);
  Read(json, "group_tips_elem_group_name", out.group_name);
  Read(json, "group_tips_elem_group_id", out.group_id);
  Read(json, "group_tips_elem_time", out.time);
  ReadList(json, "group_tips_elem_user_array", out.users);
  ReadList(json, "group_tips_elem_group_change_info_array", out.group_changes,
           ParseGroupTipGroupChangeInfo);
  ReadList(json, "group_tips_elem_member_change_info_array", out.member_changes,
           ParseGroupTipMemberChangeInfo);
  ReadUserProfileBrief(Member(json, "group_tips_elem_op_user_info"), out.op_user_info);
  ReadList(json, "group_tips_elem_changed_user_info_array", out.changed_users,
           ReadUserProfileBrief);
}

}  // namespace records

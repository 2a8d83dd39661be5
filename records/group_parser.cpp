#include "records/group_parser.h"

#include "records/group_tips_reader.h"
#include "records/json_reader.h"

namespace records {

bool ParseGroupMemberCustomString(const Json::Value& json, GroupMemberInfoCustemString_Stru& out) {
  return GuardRecord("GroupMemberInfoCustemString_Stru", [&] {
    Read(json, "group_member_info_custom_string_info_key", out.key);
    Read(json, "group_member_info_custom_string_info_value", out.value);
  });
}

bool ParseGroupMember(const Json::Value& json, GroupMemberInfo_Stru& out) {
  return GuardRecord("GroupMemberInfo_Stru", [&] {
    Read(json, "group_member_info_identifier", out.identifier);
    Read(json, "group_member_info_join_time", out.join_time);
    Read(json, "group_member_info_member_role", out.member_role);
    Read(json, "group_member_info_msg_flag", out.msg_flag);
    Read(json, "group_member_info_msg_seq", out.msg_seq);
    Read(json, "group_member_info_shutup_time", out.shutup_time);
    Read(json, "group_member_info_name_card", out.name_card);
    ReadList(json, "group_member_info_custom_info", out.custom_info, ParseGroupMemberCustomString);
  });
}

bool ParseGroupTipsEvent(const Json::Value& json, GroupTipsEvent& out) {
  return GuardRecord("GroupTipsEvent", [&] {
    ReadGroupTipsFields(json, out);
    ParseGroupMember(Member(json, "group_tips_elem_op_group_memberinfo"), out.op_member);
    ReadList(json, "group_tips_elem_changed_group_memberinfo_array", out.changed_members,
             ParseGroupMember);
    Read(json, "group_tips_elem_member_num", out.member_num);
    Read(json, "group_tips_elem_platform", out.platform);
  });
}

bool ParseGroupMemberArray(std::string_view text, std::vector<GroupMemberInfo_Stru>& out) {
  return ParseArrayText(text, out, ParseGroupMember, "group member array");
}

}  // namespace records

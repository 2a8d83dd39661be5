#include "imsdk/api_objects.h"

#include "imsdk/im_sdk.h"

namespace imsdk {

Json::Value ProfileObject(const ProfileFields& fields) {
  Json::Value v(Json::objectValue);
  v["user_profile_identifier"] = fields.id;
  v["user_profile_nick_name"] = fields.nick;
  v["user_profile_gender"] = fields.gender;
  v["user_profile_face_url"] = fields.face_url;
  v["user_profile_self_signature"] = fields.self_signature;
  v["user_profile_add_permission"] = fields.add_permission;
  v["user_profile_location"] = "";
  v["user_profile_language"] = 0;
  v["user_profile_birthday"] = 0;
  v["user_profile_level"] = 0;
  v["user_profile_role"] = 0;
  v["user_profile_custom_string_array"] = Json::Value(Json::arrayValue);
  return v;
}

Json::Value ConversationObject(const std::string& owner, int type, const std::string& id,
                               uint64_t unread, uint64_t active_time, const Json::Value& last) {
  Json::Value v(Json::objectValue);
  v["conv_id"] = id;
  v["conv_type"] = type;
  v["conv_owner"] = owner;
  v["conv_unread_num"] = Json::UInt64(unread);
  v["conv_active_time"] = Json::UInt64(active_time);
  v["conv_is_has_lastmsg"] = !last.isNull();
  if (!last.isNull()) v["conv_last_msg"] = last;
  v["conv_is_has_draft"] = false;
  return v;
}

Json::Value PendencyPage(uint64_t start_time, uint64_t unread, uint64_t next_seq,
                         const Json::Value& entries) {
  Json::Value page(Json::objectValue);
  page["pendency_page_start_time"] = Json::UInt64(start_time);
  page["pendency_page_unread_num"] = Json::UInt64(unread);
  page["pendency_page_current_seq"] = Json::UInt64(next_seq);
  page["pendency_page_pendency_info_array"] = entries;
  return page;
}

Json::Value BriefProfileObject(const std::string& id, const std::string& nick,
                               const std::string& face_url) {
  Json::Value v(Json::objectValue);
  v["user_profile_identifier"] = id;
  v["user_profile_nick_name"] = nick;
  v["user_profile_face_url"] = face_url;
  return v;
}

Json::Value RevokedLocator(const std::string& conv_id, int conv_type, uint64_t time,
                           uint64_t unique_id) {
  Json::Value v(Json::objectValue);
  v["message_locator_conv_id"] = conv_id;
  v["message_locator_conv_type"] = conv_type;
  v["message_locator_is_revoked"] = true;
  v["message_locator_time"] = Json::UInt64(time);
  v["message_locator_seq"] = 0;
  v["message_locator_is_self"] = false;
  v["message_locator_rand"] = 0;
  v["message_locator_unique_id"] = Json::UInt64(unique_id);
  return v;
}

Json::Value GroupBaseObject(const GroupFields& fields) {
  Json::Value v(Json::objectValue);
  v["group_base_info_group_id"] = fields.id;
  v["group_base_info_group_name"] = fields.name;
  v["group_base_info_group_type"] = fields.type;
  v["group_base_info_face_url"] = fields.face_url;
  v["group_base_info_owner_identifier"] = fields.owner;
  v["group_base_info_member_num"] = static_cast<Json::UInt>(fields.member_num);
  v["group_base_info_create_time"] = Json::UInt64(fields.create_time);
  return v;
}

Json::Value GroupMemberObject(const std::string& id, uint64_t join_time, int role) {
  Json::Value v(Json::objectValue);
  v["group_member_info_identifier"] = id;
  v["group_member_info_join_time"] = Json::UInt64(join_time);
  v["group_member_info_member_role"] = role;
  v["group_member_info_msg_flag"] = 0;
  v["group_member_info_msg_seq"] = 0;
  v["group_member_info_shutup_time"] = 0;
  v["group_member_info_name_card"] = "";
  v["group_member_info_custom_info"] = Json::Value(Json::arrayValue);
  return v;
}

Json::Value GroupTipElem(int tip_type, const GroupFields& group, const std::string& op_user,
                         const std::vector<std::string>& users, uint64_t time,
                         const ProfileLookup& profile, const MemberLookup& member) {
  Json::Value e(Json::objectValue);
  e["elem_type"] = kTIMElem_GroupTips;
  e["group_tips_elem_tip_type"] = tip_type;
  e["group_tips_elem_op_user"] = op_user;
  e["group_tips_elem_group_name"] = group.name;
  e["group_tips_elem_group_id"] = group.id;
  e["group_tips_elem_time"] = Json::UInt64(time);
  Json::Value user_array(Json::arrayValue), changed(Json::arrayValue),
      changed_members(Json::arrayValue);
  for (const auto& user : users) {
    user_array.append(user);
    changed.append(profile(user));
    Json::Value m = member(user);
    // Someone who just left is shown as the plain member they were.
    changed_members.append(m.isNull() ? GroupMemberObject(user, 0, 1) : m);
  }
  e["group_tips_elem_user_array"] = user_array;
  e["group_tips_elem_group_change_info_array"] = Json::Value(Json::arrayValue);
  e["group_tips_elem_member_change_info_array"] = Json::Value(Json::arrayValue);
  e["group_tips_elem_op_user_info"] = profile(op_user);
  e["group_tips_elem_changed_user_info_array"] = changed;
  Json::Value op_member = op_user.empty() ? Json::Value() : member(op_user);
  e["group_tips_elem_op_group_memberinfo"] =
      op_member.isNull() ? Json::Value(Json::objectValue) : op_member;
  e["group_tips_elem_changed_group_memberinfo_array"] = changed_members;
  e["group_tips_elem_member_num"] = static_cast<Json::UInt>(group.member_num);
  e["group_tips_elem_platform"] = "";
  return e;
}

Json::Value GroupChangeInfo(int flag, const std::string& value) {
  Json::Value v(Json::objectValue);
  v["group_tips_group_change_info_flag"] = flag;
  v["group_tips_group_change_info_value"] = value;
  v["group_tips_group_change_info_key"] = "";
  return v;
}

Json::Value GroupReportElem(int report_type, const std::string& group_id, const std::string& name,
                            const std::string& op_user, const Json::Value& op_user_info) {
  Json::Value e(Json::objectValue);
  e["elem_type"] = kTIMElem_GroupReport;
  e["group_report_elem_report_type"] = report_type;
  e["group_report_elem_group_id"] = group_id;
  e["group_report_elem_group_name"] = name;
  e["group_report_elem_op_user"] = op_user;
  e["group_report_elem_op_user_info"] = op_user_info;
  return e;
}

}  // namespace imsdk

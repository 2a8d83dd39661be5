#include "imsdk/api_objects.h"

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

}  // namespace imsdk

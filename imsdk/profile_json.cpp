#include "imsdk/profile_json.h"

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

}  // namespace imsdk

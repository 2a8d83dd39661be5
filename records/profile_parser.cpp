#include "records/profile_parser.h"

#include "records/json_reader.h"

namespace records {
namespace {

// The SDK names the entry keys after the owning array.
auto CustomStringReader(const char* key_key, const char* value_key) {
  return [=](const Json::Value& entry, UserProfileCustomString& item) {
    Read(entry, key_key, item.key);
    Read(entry, value_key, item.value);
  };
}

}  // namespace

bool ParseUserProfile(const Json::Value& json, UserProfile& out) {
  return GuardRecord("UserProfile", [&] {
    Read(json, "user_profile_identifier", out.identifier);
    Read(json, "user_profile_nick_name", out.nick_name);
    Read(json, "user_profile_gender", out.gender);
    Read(json, "user_profile_face_url", out.face_url);
    Read(json, "user_profile_self_signature", out.self_signature);
    Read(json, "user_profile_add_permission", out.add_permission);
    Read(json, "user_profile_location", out.location);
    Read(json, "user_profile_language", out.language);
    Read(json, "user_profile_birthday", out.birthday);
    Read(json, "user_profile_level", out.level);
    Read(json, "user_profile_role", out.role);
    ReadList(json, "user_profile_custom_string_array", out.custom_strings,
             CustomStringReader("user_profile_custom_string_info_key",
                                "user_profile_custom_string_info_value"));
  });
}

bool ParseFriend(const Json::Value& json, FriendsList_Stru& out) {
  return GuardRecord("FriendsList_Stru", [&] {
    Read(json, "friend_profile_identifier", out.identifier);
    ReadList(json, "friend_profile_group_name_array", out.group_names);
    Read(json, "friend_profile_remark", out.remark);
    Read(json, "friend_profile_add_wording", out.add_wording);
    Read(json, "friend_profile_add_source", out.add_source);
    Read(json, "friend_profile_add_time", out.add_time);
    ParseUserProfile(Member(json, "friend_profile_user_profile"), out.profile);
    ReadList(json, "friend_profile_custom_string_array", out.custom_strings,
             CustomStringReader("friend_profile_custom_string_info_key",
                                "friend_profile_custom_string_info_value"));
  });
}

bool ParseFriendAddPendency(const Json::Value& json, FriendAddPendency& out) {
  return GuardRecord("FriendAddPendency", [&] {
    Read(json, "friend_add_pendency_info_type", out.type);
    // The SDK's key is spelled so.
    Read(json, "friend_add_pendency_info_idenitifer", out.identifier);
    Read(json, "friend_add_pendency_info_nick_name", out.nick_name);
    Read(json, "friend_add_pendency_info_add_time", out.add_time);
    Read(json, "friend_add_pendency_info_add_source", out.add_source);
    Read(json, "friend_add_pendency_info_add_wording", out.add_wording);
  });
}

bool ParsePendencyPage(const Json::Value& json, PendencyPage& out) {
  return GuardRecord("PendencyPage", [&] {
    Read(json, "pendency_page_start_time", out.start_time);
    Read(json, "pendency_page_unread_num", out.unread_num);
    Read(json, "pendency_page_current_seq", out.current_seq);
    ReadList(json, "pendency_page_pendency_info_array", out.pendencies, ParseFriendAddPendency);
  });
}

bool ParseUserProfileArray(std::string_view text, std::vector<UserProfile>& out) {
  return ParseArrayText(text, out, ParseUserProfile, "profile array");
}

bool ParseFriendArray(std::string_view text, std::vector<FriendsList_Stru>& out) {
  return ParseArrayText(text, out, ParseFriend, "friend array");
}

Json::Value BuildFriendAddRequest(const WString& identifier, const WString& nick_name,
                                  const WString& add_source, const WString& add_wording) {
  Json::Value request(Json::objectValue);
  request["friend_add_pendency_identifier"] = platform::Utf16ToUtf8(identifier);
  request["friend_add_pendency_nick_name"] = platform::Utf16ToUtf8(nick_name);
  request["friend_add_pendency_add_source"] = platform::Utf16ToUtf8(add_source);
  request["friend_add_pendency_add_wording"] = platform::Utf16ToUtf8(add_wording);
  return request;
}

}  // namespace records

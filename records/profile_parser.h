#pragma once
// Profiles, friends, friend requests and the friend-add request builder.

#include <json/json.h>

#include <string_view>
#include <vector>

#include "records/profile_records.h"

namespace records {

// Each parser traces a fault with its record's name and keeps what it read.
bool ParseUserProfile(const Json::Value& json, UserProfile& out);
bool ParseFriend(const Json::Value& json, FriendsList_Stru& out);
bool ParseFriendAddPendency(const Json::Value& json, FriendAddPendency& out);
bool ParsePendencyPage(const Json::Value& json, PendencyPage& out);

// JSON arrays of profiles or friends; false when not JSON or not an array.
bool ParseUserProfileArray(std::string_view text, std::vector<UserProfile>& out);
bool ParseFriendArray(std::string_view text, std::vector<FriendsList_Stru>& out);

// The friend-add request object (friend_add_pendency_identifier, _nick_name,
// _add_source, _add_wording) for the friendship service.
Json::Value BuildFriendAddRequest(const WString& identifier, const WString& nick_name,
                                  const WString& add_source, const WString& add_wording);

}  // namespace records

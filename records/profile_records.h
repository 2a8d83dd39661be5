#pragma once
// User profiles, friends and friend requests.

#include <cstdint>
#include <vector>

#include "platform/strings.h"

// One entry of a profile's or a friend's custom string array.
struct UserProfileCustomString {
  WString key;
  WString value;
  bool operator==(const UserProfileCustomString&) const = default;
};

struct UserProfile {
  WString identifier;
  WString nick_name;
  uint32_t gender = 0;
  WString face_url;
  WString self_signature;
  uint32_t add_permission = 0;
  WString location;
  uint32_t language = 0;
  uint32_t birthday = 0;
  uint32_t level = 0;
  uint32_t role = 0;
  std::vector<UserProfileCustomString> custom_strings;
  bool operator==(const UserProfile&) const = default;
};

struct FriendsList_Stru {
  WString identifier;
  std::vector<WString> group_names;
  WString remark;
  WString add_wording;
  WString add_source;
  uint64_t add_time = 0;
  UserProfile profile;
  std::vector<UserProfileCustomString> custom_strings;
  bool operator==(const FriendsList_Stru&) const = default;
};

// One incoming or outgoing friend request.
struct FriendAddPendency {
  uint32_t type = 0;
  WString identifier;
  WString nick_name;
  uint64_t add_time = 0;
  WString add_source;
  WString add_wording;
  bool operator==(const FriendAddPendency&) const = default;
};

struct PendencyPage {
  uint64_t start_time = 0;
  uint64_t unread_num = 0;
  uint64_t current_seq = 0;
  std::vector<FriendAddPendency> pendencies;
  bool operator==(const PendencyPage&) const = default;
};

#pragma once
// The JSON objects every backend hands out alike (keys in im_sdk.h).
#include <json/json.h>

#include <cstdint>
#include <string>

namespace imsdk {

struct ProfileFields {
  std::string id;
  std::string nick;
  int gender = 0;
  std::string face_url;
  std::string self_signature;
  int add_permission = 0;
};

Json::Value ProfileObject(const ProfileFields& fields);

// A conversation; `last` is its last message object, null when it has none.
Json::Value ConversationObject(const std::string& owner, int type, const std::string& id,
                               uint64_t unread, uint64_t active_time, const Json::Value& last);

// A page of friend requests.
Json::Value PendencyPage(uint64_t start_time, uint64_t unread, uint64_t next_seq,
                         const Json::Value& entries);

}  // namespace imsdk

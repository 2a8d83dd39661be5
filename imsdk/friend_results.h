#pragma once
// The friendship result entry every backend hands out, and its wording.
#include <json/json.h>

#include <string>

namespace imsdk {

// {"friend_result_identifier", "friend_result_code", "friend_result_desc"}.
Json::Value ResultEntry(const std::string& id, int code, const char* desc);
// A short English description of a friendship result code.
const char* FriendResultText(int code);

}  // namespace imsdk

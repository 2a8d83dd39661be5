#pragma once
// The profile object every backend hands out (keys in im_sdk.h).
#include <json/json.h>

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

}  // namespace imsdk

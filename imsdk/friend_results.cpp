#include "imsdk/friend_results.h"

#include "imsdk/im_sdk.h"

namespace imsdk {

Json::Value ResultEntry(const std::string& id, int code, const char* desc) {
  Json::Value v;
  v["friend_result_identifier"] = id;
  v["friend_result_code"] = code;
  v["friend_result_desc"] = desc;
  return v;
}

const char* FriendResultText(int code) {
  switch (code) {
    case TIM_SUCC:
      return "";
    case TIM_FRIEND_RESULT_PENDING:
      return "waiting for the peer";
    case TIM_FRIEND_RESULT_ALREADY_FRIEND:
      return "already a friend";
    case TIM_FRIEND_RESULT_DENIED:
      return "the peer accepts no requests";
    case TIM_FRIEND_RESULT_NOT_FRIEND:
      return "not a friend";
    case TIM_ERR_PENDENCY_NOT_FOUND:
      return "no such request";
    default:
      return "failed";
  }
}

}  // namespace imsdk

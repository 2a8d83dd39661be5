#pragma once
// Checks an element array to be sent: 1 to 16 objects of type text (0),
// image (1), custom (3) or file (4), each with its required string member.
#include <json/json.h>

#include <string>

namespace imsdk {

// 0 or TIM_ERR_INVALID_JSON.
int CheckOutgoingElems(const Json::Value& elems);

// What a failed send gives back: the message as given, addressed, status 3.
Json::Value FailedSendEcho(Json::Value msg, const std::string& conv_id, int conv_type,
                           const std::string& sender);

}  // namespace imsdk

#pragma once
// Checks an element array to be sent: 1 to 16 objects of type text (0),
// image (1), custom (3) or file (4), each with its required string member.
#include <json/json.h>

namespace imsdk {

// 0 or TIM_ERR_INVALID_JSON.
int CheckOutgoingElems(const Json::Value& elems);

}  // namespace imsdk

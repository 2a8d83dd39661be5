#pragma once
// IMSDK_CALL_LOG=<file>: one JSON line per API call and per callback,
// appended in the order they happen (calls on the caller's thread,
// callbacks on the callback thread).
#include <json/json.h>

namespace imsdk {

bool CallLogEnabled();
// {"call": function, "params": params}
void LogCall(const char* function, const Json::Value& params);
// {"callback": name, ...payload members}
void LogCallback(const char* name, Json::Value payload);

}  // namespace imsdk

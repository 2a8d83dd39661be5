#pragma once
// A user id names the user's own folder under the data tree, so it must be a
// single plain folder name that no other user or shared folder can have.

#include <string>

#include "platform/strings.h"

namespace platform {

// The IM SDK's limit on an identifier, in UTF-8 bytes.
inline constexpr size_t kMaxUserIdBytes = 128;

// Empty when `userId` may name a user's folder; otherwise why not: empty, "."
// or "..", a path separator ('/' or '\'), a control character, the name of a
// shared folder of the data tree ("log", "cfg", in any case), or longer than
// kMaxUserIdBytes.
std::string UserIdProblem(const WString& userId);

}  // namespace platform

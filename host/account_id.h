#pragma once
// The host knows accounts by 32-bit number; the chat knows the same people by
// their IM user id, which is that number in decimal.

#include <cstdint>
#include <optional>

#include "platform/strings.h"

namespace host {

// The account behind an IM user id; none when the id is not a decimal
// number that fits the host's 32-bit id (up to 2,147,483,647).
std::optional<int32_t> AccountIdOfImUser(const WString& imUserId);

}  // namespace host

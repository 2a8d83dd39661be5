#pragma once
// The host knows accounts by 32-bit number; the chat knows the same people by
// their IM user id, which is that number in decimal.

#include <cstdint>
#include <optional>

#include "platform/strings.h"

namespace host {

// The account behind an IM user id; none when the id is not a decimal
// number that fits (at most nine digits, so never negative).
std::optional<int32_t> AccountIdOfImUser(const WString& imUserId);

}  // namespace host

#include "host/account_id.h"

#include <limits>

namespace host {

std::optional<int32_t> AccountIdOfImUser(const WString& imUserId) {
  if (imUserId.empty() || imUserId.size() > 10) return std::nullopt;
  int64_t value = 0;  // ten digits may pass the 32-bit range: checked below
  for (char16_t c : imUserId) {
    if (c < u'0' || c > u'9') return std::nullopt;
    value = value * 10 + (c - u'0');
  }
  if (value > std::numeric_limits<int32_t>::max()) return std::nullopt;
  return static_cast<int32_t>(value);
}

}  // namespace host

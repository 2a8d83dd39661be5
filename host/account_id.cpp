#include "host/account_id.h"

namespace host {

std::optional<int32_t> AccountIdOfImUser(const WString& imUserId) {
  if (imUserId.empty() || imUserId.size() > 9) return std::nullopt;
  int32_t value = 0;
  for (char16_t c : imUserId) {
    if (c < u'0' || c > u'9') return std::nullopt;
    value = value * 10 + (c - u'0');
  }
  return value;
}

}  // namespace host

#include "records/entry_limits.h"

#include <algorithm>

#include "platform/trace.h"

namespace records {
namespace {

// Trivially destructible, so no thread-exit hook ties the module to a thread.
thread_local bool t_budget_active = false;
thread_local size_t t_budget_left = 0;

}  // namespace

TextEntryBudget::TextEntryBudget() : outermost_(!t_budget_active) {
  if (!outermost_) return;
  t_budget_active = true;
  t_budget_left = kMaxEntriesPerText;
}

TextEntryBudget::~TextEntryBudget() {
  if (outermost_) t_budget_active = false;
}

size_t AllowedEntries(std::string_view what, size_t wanted, size_t cap) {
  size_t allowed = std::min(wanted, cap);
  if (t_budget_active) {
    allowed = std::min(allowed, t_budget_left);
    t_budget_left -= allowed;
  }
  if (allowed < wanted) {
    platform::Trace("%.*s: kept %zu of %zu entries, the rest is over the limit",
                    static_cast<int>(what.size()), what.data(), allowed, wanted);
  }
  return allowed;
}

}  // namespace records

#pragma once
// History paging by mouse wheel: which page a wheel turn fetches, if any.

#include <cstdint>
#include <optional>

namespace ui::main {

enum class PageFetch { kNone, kOlder, kNewer };

inline constexpr uint64_t kPageFetchGapMs = 1000;

// `wheelDelta` > 0 turns away from the user (older: only at the top),
// otherwise towards the user (newer: only at the bottom). Nothing within
// kPageFetchGapMs of the last fetch.
inline PageFetch DecidePageFetch(int wheelDelta, uint64_t nowMs,
                                 std::optional<uint64_t> lastFetchMs, int scrollPos,
                                 int scrollRange) {
  if (lastFetchMs && nowMs - *lastFetchMs < kPageFetchGapMs) return PageFetch::kNone;
  if (wheelDelta < 1) return scrollPos == scrollRange ? PageFetch::kNewer : PageFetch::kNone;
  return scrollPos <= 0 ? PageFetch::kOlder : PageFetch::kNone;
}

}  // namespace ui::main

#pragma once
// The conversation list's rules that need no toolkit: the time text, the
// preview of the last message and the search filter.

#include <cstdint>
#include <ctime>

#include "platform/strings.h"
#include "records/message_records.h"

namespace ui::main {

// "HH:MM" when `seconds` falls on today's date (local time), else
// "YYYY-MM-DD"; 0 means now.
WString ConversationTimeText(uint64_t seconds, std::time_t now);

// The same for many rows at one moment: today's date is worked out once.
// One rebuild's clock: rows of the same local day share one calendar
// conversion (a list of hundreds of rows would otherwise convert each).
class ConversationTimes {
 public:
  explicit ConversationTimes(std::time_t now);
  WString Text(uint64_t seconds) const;

 private:
  // The local day holding `when`: [start, end) and its date text.
  struct Day {
    std::time_t start = 0;
    std::time_t end = 0;
    bool today = false;
    WString date;
  };
  const Day& DayOf(std::time_t when) const;

  std::time_t now_;
  std::tm today_{};
  mutable Day day_;
};

// The columns a preview may take in the list: a wide (CJK, full-width)
// character takes two, others one; 28 fill the preview's width at its font.
inline constexpr int kPreviewColumns = 28;

// The text of the last text element of the message on one line, cut by
// CutPreview; empty without one.
WString ConversationPreview(const MessageStru& lastMessage);
// `text` when it fits `columns`; else its longest start that leaves room
// for "…" (two columns), then "…". Characters are never split.
WString CutPreview(const WString& text, int columns = kPreviewColumns);

// Kept when the search text is empty or is a substring of the name, both
// upper-cased.
bool MatchesSearch(const WString& name, const WString& search);

}  // namespace ui::main

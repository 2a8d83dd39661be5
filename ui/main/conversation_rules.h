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

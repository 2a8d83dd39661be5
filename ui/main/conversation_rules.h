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
class ConversationTimes {
 public:
  explicit ConversationTimes(std::time_t now);
  WString Text(uint64_t seconds) const;

 private:
  std::time_t now_;
  std::tm today_{};
};

// The text of the last text element of the message; empty without one.
WString ConversationPreview(const MessageStru& lastMessage);

// Kept when the search text is empty or is a substring of the name, both
// upper-cased.
bool MatchesSearch(const WString& name, const WString& search);

}  // namespace ui::main

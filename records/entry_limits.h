#pragma once
// What one text from outside may bring into records. A record can cost a
// thousand times the bytes of its JSON (an element record is over a kilobyte,
// "{}" is two bytes), so lists are cut to these counts: the first entries are
// kept, the cut is traced, and the rest of the text is read as usual.

#include <cstddef>
#include <string_view>

namespace records {

// Entries of one top-level array: messages of an event or a history page,
// and conversations, friends, profiles or members of a list.
inline constexpr size_t kMaxMessagesPerText = 1'000;
inline constexpr size_t kMaxRecordsPerText = 10'000;
// Elements of one message.
inline constexpr size_t kMaxElemsPerMessage = 32;
// Entries of any one nested list (ids, custom strings, member changes).
inline constexpr size_t kMaxEntriesPerList = 10'000;
// Every entry of every list of one text together, top-level ones included.
inline constexpr size_t kMaxEntriesPerText = 10'000;

// Shares one budget of kMaxEntriesPerText between all lists read while it
// lives on this thread. Scopes nest; only the outermost one counts.
class TextEntryBudget {
 public:
  TextEntryBudget();
  ~TextEntryBudget();
  TextEntryBudget(const TextEntryBudget&) = delete;
  TextEntryBudget& operator=(const TextEntryBudget&) = delete;

 private:
  bool outermost_;
};

// How many of the `wanted` entries of the list `what` may be read: at most
// `cap`, and no more than the text's budget has left (the number is taken
// from it). A cut is traced with the list's name and both counts.
size_t AllowedEntries(std::string_view what, size_t wanted, size_t cap);

}  // namespace records

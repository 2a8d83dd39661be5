#pragma once
// Account and conversation ids are written into SQL text between single
// quotes. They are not expected to hold a quote, but nothing guarantees it:
// a quote is doubled (the SQL way of writing it inside a literal), so an odd
// id stays one value and never becomes SQL. A backslash means nothing to
// SQLite and is kept. An id holding a NUL would be cut short by the C string
// interface, and an id far longer than any account is not an id: both are
// refused with a trace, and the caller skips the statement.

#include <optional>
#include <string>
#include <string_view>

#include "platform/strings.h"

namespace store {

// Account ids are declared 10 and conversation ids 20 characters; this leaves
// room for anything plausible while keeping statements small.
inline constexpr size_t kMaxSqlIdBytes = 512;

// The id in UTF-8, or nullopt (and a trace naming `role`) when it is refused.
std::optional<std::string> CheckedSqlId(std::u16string_view id, const char* role);

// The accepted id with every ' doubled, ready to sit between quotes.
std::optional<std::string> SqlIdText(std::u16string_view id, const char* role);

// ' doubled; for values already known to be acceptable.
std::string DoubleQuotes(std::string_view text);

}  // namespace store

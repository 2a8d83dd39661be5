#include "store/sql_id.h"

#include "platform/trace.h"

namespace store {

std::string DoubleQuotes(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    out.push_back(c);
    if (c == '\'') out.push_back('\'');
  }
  return out;
}

std::optional<std::string> CheckedSqlId(std::u16string_view id, const char* role) {
  std::string utf8 = platform::Utf16ToUtf8(id);
  if (utf8.find('\0') != std::string::npos) {
    platform::Trace("CChatDb: %s holds a NUL character, statement skipped", role);
    return std::nullopt;
  }
  if (utf8.size() > kMaxSqlIdBytes) {
    platform::Trace("CChatDb: %s is %zu bytes long (at most %zu), statement skipped", role,
                    utf8.size(), kMaxSqlIdBytes);
    return std::nullopt;
  }
  return utf8;
}

std::optional<std::string> SqlIdText(std::u16string_view id, const char* role) {
  std::optional<std::string> checked = CheckedSqlId(id, role);
  if (!checked) return std::nullopt;
  return DoubleQuotes(*checked);
}

}  // namespace store

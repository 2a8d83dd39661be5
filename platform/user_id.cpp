#include "platform/user_id.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace platform {
namespace {

// The folders beside the users' own under the data tree.
constexpr std::array<std::u16string_view, 2> kSharedFolders = {u"log", u"cfg"};

bool EqualsIgnoringAsciiCase(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char16_t x, char16_t y) {
    auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c - u'A' + u'a') : c; };
    return lower(x) == lower(y);
  });
}

}  // namespace

std::string UserIdProblem(const WString& userId) {
  if (userId.empty()) return "empty";
  if (userId == u"." || userId == u"..") return "a relative folder name";
  for (char16_t c : userId) {
    if (c == u'/' || c == u'\\') return "holds a path separator";
    if (c < 0x20 || c == 0x7F) return "holds a control character";
  }
  for (std::u16string_view shared : kSharedFolders) {
    if (EqualsIgnoringAsciiCase(userId, shared)) return "the name of a shared folder";
  }
  if (Utf16ToUtf8(userId).size() > kMaxUserIdBytes) return "longer than the SDK allows";
  return {};
}

}  // namespace platform

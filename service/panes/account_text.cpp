#include "service/panes/account_text.h"

#include <regex>
#include <string>

namespace service {
namespace {

// In GBK the class reads "A-Za-z0-9一-龥" (一 = D2 BB, 龥 = FD 9B).
constexpr const char* kEmailPatternGbk =
    "^[A-Za-z0-9\xD2\xBB-\xFD\x9B]+@[a-zA-Z0-9_-]+(.[a-zA-Z0-9_-]+)+$";

bool InDomainClass(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-';
}

bool InLocalClass(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == 0xD2 ||
         (c >= 0xBB && c <= 0xFD) || c == 0x9B;
}

// The pattern backtracks exponentially on a long domain that does not match
// (30 characters take seconds). This linear check accepts exactly what the
// pattern accepts, so the pattern only ever runs on text it matches: the
// local part is one or more class bytes up to the first "@"; the domain
// starts and ends with a domain character, is at least three long, and any
// other character in it (taken by the unescaped dot) stands alone.
bool MatchesEmailShape(const std::string& gbk) {
  size_t at = gbk.find('@');
  if (at == std::string::npos || at == 0) return false;
  for (size_t i = 0; i < at; ++i) {
    if (!InLocalClass(static_cast<unsigned char>(gbk[i]))) return false;
  }
  const std::string domain = gbk.substr(at + 1);
  if (domain.size() < 3 || !InDomainClass(domain.front()) || !InDomainClass(domain.back())) {
    return false;
  }
  for (size_t i = 1; i < domain.size(); ++i) {
    if (!InDomainClass(domain[i]) && !InDomainClass(domain[i - 1])) return false;
  }
  return true;
}

}  // namespace

bool IsMobileNumber(const WString& text) {
  static const std::regex kMobile("^1[0-9]{10}$");
  return text.size() == 11 && std::regex_match(platform::Utf16ToUtf8(text), kMobile);
}

bool IsEmailAddress(const WString& text) {
  static const std::regex kEmail(kEmailPatternGbk);
  const std::string gbk = platform::Utf16ToGbk(text);
  if (gbk.size() > kMaxAccountTextLength || !MatchesEmailShape(gbk)) return false;
  return std::regex_match(gbk, kEmail);
}

host::AccountKind AccountKindOf(const WString& text) {
  return text.find(u'@') == WString::npos ? host::AccountKind::kMobile : host::AccountKind::kEmail;
}

AccountTextCheck CheckAccountText(const WString& text) {
  if (text.empty()) return AccountTextCheck::kEmpty;
  if (AccountKindOf(text) == host::AccountKind::kMobile) {
    return IsMobileNumber(text) ? AccountTextCheck::kValid : AccountTextCheck::kBadMobile;
  }
  return IsEmailAddress(text) ? AccountTextCheck::kValid : AccountTextCheck::kBadEmail;
}

}  // namespace service

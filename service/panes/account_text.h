#pragma once
// The rules for the account text typed into the add-friend dialog: a text
// without "@" is a mobile number, anything else an e-mail address, each with
// its own pattern. Toolkit-free so that the rules are tested by tables.

#include "host/account_search.h"
#include "platform/strings.h"

namespace service {

// The longest address mail systems accept; longer text is no e-mail address.
inline constexpr size_t kMaxAccountTextLength = 254;

// A "1" and ten more digits.
bool IsMobileNumber(const WString& text);

// The e-mail pattern as the module has always had it: written in GBK and
// matched against the GBK bytes of the text. Its first character class was
// meant to allow Chinese characters but, being matched byte by byte, allows
// ASCII letters and digits and the bytes D2, BB..FD and 9B; the dot of its
// last group is not escaped and matches any character. Both quirks are kept.
bool IsEmailAddress(const WString& text);

enum class AccountTextCheck {
  kValid,
  kEmpty,      // "请输入查找的账号！"
  kBadMobile,  // "无效的手机号码！"
  kBadEmail,   // "无效的邮箱！"
};

host::AccountKind AccountKindOf(const WString& text);
AccountTextCheck CheckAccountText(const WString& text);

}  // namespace service

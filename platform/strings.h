#pragma once
// Text encodings. The window side, the records and the exports hold UTF-16
// text (WString); the IM SDK speaks UTF-8; trace texts are GBK on the original
// platform. No conversion here throws: malformed input is replaced, never
// passed on and never fatal.

#include <string>
#include <string_view>

using WString = std::u16string;

namespace platform {

// U+FFFD stands in for any malformed sequence.
inline constexpr char16_t kReplacementChar = u'\uFFFD';

// Invalid UTF-8 (stray continuation bytes, overlong forms, surrogates, values
// above U+10FFFF, truncated sequences) becomes one U+FFFD per bad sequence.
WString Utf8ToUtf16(std::string_view utf8);
// A lone surrogate becomes U+FFFD (encoded as EF BF BD).
std::string Utf16ToUtf8(std::u16string_view utf16);

// True when the bytes are well-formed UTF-8.
bool IsValidUtf8(std::string_view bytes);

// GBK through iconv. Characters that GBK cannot hold become '?'; GBK bytes
// that do not decode become U+FFFD.
std::string Utf16ToGbk(std::u16string_view utf16);
WString GbkToUtf16(std::string_view gbk);

// The "system ANSI code page": on POSIX the narrow encoding of the current
// locale (nl_langinfo(CODESET)); same replacement rules as GBK.
std::string Utf16ToAnsi(std::u16string_view utf16);
WString AnsiToUtf16(std::string_view ansi);

// Upper-cases letters of the Basic Multilingual Plane (used by the list
// filters to compare without regard to case). Surrogate pairs stay as they are.
WString ToUpper(std::u16string_view text);

// Convenience for literals in code and tests: u8 text to WString.
inline WString W(std::string_view utf8) {
  return Utf8ToUtf16(utf8);
}

}  // namespace platform

#include "platform/strings.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>
#include <wctype.h>

#include <cerrno>
#include <mutex>

namespace platform {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDFFF;
}

// Decodes one code point at bytes[i]; advances i past it. Malformed input
// yields kReplacement and advances past the longest bad prefix (at least one).
char32_t DecodeUtf8(std::string_view bytes, size_t& i, bool* valid = nullptr) {
  if (valid) *valid = false;
  const auto b0 = static_cast<unsigned char>(bytes[i]);
  if (b0 < 0x80) {
    ++i;
    if (valid) *valid = true;
    return b0;
  }
  int extra;
  char32_t cp;
  char32_t min;
  if ((b0 & 0xE0) == 0xC0) {
    extra = 1, cp = b0 & 0x1F, min = 0x80;
  } else if ((b0 & 0xF0) == 0xE0) {
    extra = 2, cp = b0 & 0x0F, min = 0x800;
  } else if ((b0 & 0xF8) == 0xF0) {
    extra = 3, cp = b0 & 0x07, min = 0x10000;
  } else {
    ++i;
    return kReplacement;
  }
  size_t j = i + 1;
  for (int k = 0; k < extra; ++k, ++j) {
    if (j >= bytes.size() || (static_cast<unsigned char>(bytes[j]) & 0xC0) != 0x80) {
      i = j;
      return kReplacement;
    }
    cp = (cp << 6) | (static_cast<unsigned char>(bytes[j]) & 0x3F);
  }
  i = j;
  if (cp < min || cp > 0x10FFFF || IsSurrogate(cp)) return kReplacement;
  if (valid) *valid = true;
  return cp;
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

std::string Utf16ToLeBytes(std::u16string_view utf16) {
  std::string bytes;
  bytes.reserve(utf16.size() * 2);
  for (char16_t u : utf16) {
    bytes.push_back(static_cast<char>(u & 0xFF));
    bytes.push_back(static_cast<char>(u >> 8));
  }
  return bytes;
}

// Runs iconv over the whole input. On a character the target cannot hold or
// a byte sequence the source does not allow, `skip` input bytes are dropped
// and `replacement` is written instead.
// `skip` tells how many input bytes the bad character at `at` spans.
using SkipRule = size_t (*)(const char* at, size_t left);

size_t SkipOneByte(const char*, size_t) {
  return 1;
}

// A surrogate pair is one character: drop both halves.
size_t SkipUtf16Char(const char* at, size_t left) {
  const auto hi = static_cast<unsigned char>(at[1]);
  return left >= 4 && hi >= 0xD8 && hi <= 0xDB ? 4 : 2;
}

std::string Iconv(const char* to, const char* from, std::string_view input, SkipRule skip,
                  std::string_view replacement) {
  iconv_t cd = iconv_open(to, from);
  if (cd == reinterpret_cast<iconv_t>(-1)) return std::string(replacement);
  std::string out;
  out.resize(input.size() * 2 + 16);
  char* in = const_cast<char*>(input.data());
  size_t in_left = input.size();
  size_t used = 0;
  while (in_left > 0) {
    char* dst = out.data() + used;
    size_t dst_left = out.size() - used;
    size_t r = iconv(cd, &in, &in_left, &dst, &dst_left);
    used = out.size() - dst_left;
    if (r != static_cast<size_t>(-1)) break;
    if (errno == E2BIG) {
      out.resize(out.size() * 2);
      continue;
    }
    // EILSEQ or EINVAL (truncated input): replace and move on.
    size_t n = std::min(skip(in, in_left), in_left);
    in += n;
    in_left -= n;
    out.resize(std::max(out.size(), used + replacement.size() + 16));
    out.replace(used, replacement.size(), replacement);
    used += replacement.size();
  }
  iconv_close(cd);
  out.resize(used);
  return out;
}

std::string FromUtf16(const char* to, std::u16string_view utf16) {
  // Lone surrogates would stop iconv; clean them first.
  std::u16string clean = Utf8ToUtf16(Utf16ToUtf8(utf16));
  return Iconv(to, "UTF-16LE", Utf16ToLeBytes(clean), SkipUtf16Char, "?");
}

WString ToUtf16(const char* from, std::string_view bytes) {
  const char16_t r = kReplacementChar;
  std::string le = Iconv("UTF-16LE", from, bytes, SkipOneByte,
                         std::string{static_cast<char>(r & 0xFF), static_cast<char>(r >> 8)});
  WString out;
  out.reserve(le.size() / 2);
  for (size_t i = 0; i + 1 < le.size(); i += 2) {
    out.push_back(static_cast<char16_t>(static_cast<unsigned char>(le[i]) |
                                        (static_cast<unsigned char>(le[i + 1]) << 8)));
  }
  return out;
}

const char* AnsiCodeset() {
  static std::once_flag once;
  static std::string codeset;
  std::call_once(once, [] {
    // The process may never have called setlocale; ask the environment's.
    locale_t loc = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(0));
    const char* name = loc ? nl_langinfo_l(CODESET, loc) : nl_langinfo(CODESET);
    codeset = name && *name ? name : "ANSI_X3.4-1968";
    if (loc) freelocale(loc);
  });
  return codeset.c_str();
}

}  // namespace

WString Utf8ToUtf16(std::string_view utf8) {
  WString out;
  out.reserve(utf8.size());
  size_t i = 0;
  while (i < utf8.size()) {
    char32_t cp = DecodeUtf8(utf8, i);
    if (cp < 0x10000) {
      out.push_back(static_cast<char16_t>(cp));
    } else {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    }
  }
  return out;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size() * 3 / 2);
  for (size_t i = 0; i < utf16.size(); ++i) {
    char32_t u = utf16[i];
    if (u >= 0xD800 && u <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] <= 0xDFFF) {
      u = 0x10000 + ((u - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
      ++i;
    } else if (IsSurrogate(u)) {
      u = kReplacement;
    }
    AppendUtf8(out, u);
  }
  return out;
}

bool IsValidUtf8(std::string_view bytes) {
  size_t i = 0;
  bool valid = true;
  while (i < bytes.size() && valid) DecodeUtf8(bytes, i, &valid);
  return valid;
  return true;
}

std::string Utf16ToGbk(std::u16string_view utf16) {
  return FromUtf16("GBK", utf16);
}
WString GbkToUtf16(std::string_view gbk) {
  return ToUtf16("GBK", gbk);
}
std::string Utf16ToAnsi(std::u16string_view utf16) {
  return FromUtf16(AnsiCodeset(), utf16);
}
WString AnsiToUtf16(std::string_view ansi) {
  return ToUtf16(AnsiCodeset(), ansi);
}

WString ToUpper(std::u16string_view text) {
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  WString out(text);
  for (char16_t& c : out) {
    if (c < 0x80) {
      if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
    } else if (utf8 && !IsSurrogate(c)) {
      wint_t up = towupper_l(static_cast<wint_t>(c), utf8);
      if (up < 0x10000) c = static_cast<char16_t>(up);
    }
  }
  return out;
}

}  // namespace platform

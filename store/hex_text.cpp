#include "store/hex_text.h"

namespace store {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

unsigned DigitValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
  return 0;
}

}  // namespace

std::string EncodeHexUtf8(std::string_view utf8) {
  std::string hex;
  hex.resize(utf8.size() * 2);
  size_t i = 0;
  for (unsigned char byte : utf8) {
    hex[i++] = kDigits[byte & 0x0F];
    hex[i++] = kDigits[byte >> 4];
  }
  return hex;
}

std::string EncodeHexText(std::u16string_view text) {
  return EncodeHexUtf8(platform::Utf16ToUtf8(text));
}

std::string DecodeHexToUtf8(std::string_view hex) {
  std::string bytes;
  bytes.reserve(hex.size() / 2);
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(DigitValue(hex[i + 1]) * 16 + DigitValue(hex[i])));
  }
  return bytes;
}

WString DecodeHexToText(std::string_view hex) {
  return platform::Utf8ToUtf16(DecodeHexToUtf8(hex));
}

}  // namespace store

#pragma once
// The text encoding of MessageTbl: every UTF-8 byte as two upper-case hex
// digits, low nibble first ("A" = 0x41 -> "14"). Existing Chat.db files hold
// this order, so it must not change. Encoded text uses only 0-9 and A-F and
// therefore never needs SQL escaping.

#include <string>
#include <string_view>

#include "platform/strings.h"

namespace store {

std::string EncodeHexUtf8(std::string_view utf8);
std::string EncodeHexText(std::u16string_view text);

// Pairs of characters, value = second * 16 + first. A character outside
// 0-9 and A-F (lower case included) counts as 0; a lone trailing character
// is not half a byte of data and is dropped.
std::string DecodeHexToUtf8(std::string_view hex);
WString DecodeHexToText(std::string_view hex);

}  // namespace store

#include "store/hex_text.h"

#include <gtest/gtest.h>

namespace {

// Low nibble first, upper-case digits: existing files hold exactly these.
TEST(HexText, EncodesEveryByteLowNibbleFirst) {
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},
      {"A", "14"},
      {"\xE4", "4E"},
      {std::string("\x00\xFF", 2), "00FF"},
      {"\xE4\xBD\xA0", "4EDB0A"},  // 你
      {"'; drop", "72B3024627F607"},
  };
  for (const auto& [utf8, hex] : cases) {
    EXPECT_EQ(store::EncodeHexUtf8(utf8), hex);
    EXPECT_EQ(store::DecodeHexToUtf8(hex), utf8) << hex;
  }
}

TEST(HexText, ForeignCharactersCountAsZero) {
  const std::pair<const char*, std::string> cases[] = {
      {"1a", "\x01"},  // lower case is not a digit here
      {"G4", "\x40"}, {"4G", "\x04"}, {"zz14", std::string("\0A", 2)},
      {"141", "A"},  // a lone trailing digit is dropped
      {"1", ""},
  };
  for (const auto& [hex, bytes] : cases) EXPECT_EQ(store::DecodeHexToUtf8(hex), bytes) << hex;
}

TEST(HexText, TextGoesThroughUtf8) {
  EXPECT_EQ(store::EncodeHexText(u"A\u4F60"), "144EDB0A");
  EXPECT_EQ(store::DecodeHexToText("144EDB0A"), u"A\u4F60");
  WString emoji = u"\U0001F600 ok";
  EXPECT_EQ(store::DecodeHexToText(store::EncodeHexText(emoji)), emoji);
  // 0xFF is never valid UTF-8.
  EXPECT_EQ(store::DecodeHexToText("FF14"), u"\uFFFDA");
}

}  // namespace

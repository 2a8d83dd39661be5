#include "store/hex_text.h"

#include <gtest/gtest.h>

namespace {

struct HexCase {
  std::string utf8;
  const char* hex;
};

// Low nibble first: existing files hold exactly these digits.
const HexCase kHexCases[] = {
    {"", ""},
    {"A", "14"},
    {"\xE4", "4E"},
    {"Hi!", "849612"},
    {std::string("\x00\xFF", 2), "00FF"},
    {"\xE4\xBD\xA0", "4EDB0A"},  // 你
    {"'; drop", "72B3024627F607"},
};

TEST(HexText, EncodesUtf8BytesLowNibbleFirst) {
  for (const HexCase& c : kHexCases) {
    EXPECT_EQ(store::EncodeHexUtf8(c.utf8), c.hex) << c.hex;
    EXPECT_EQ(store::DecodeHexToUtf8(c.hex), c.utf8) << c.hex;
  }
}

TEST(HexText, TextGoesThroughUtf8) {
  EXPECT_EQ(store::EncodeHexText(u"A\u4F60"), "144EDB0A");
  EXPECT_EQ(store::DecodeHexToText("144EDB0A"), u"A\u4F60");
  // A character outside the BMP survives the round trip.
  WString emoji = u"\U0001F600 ok";
  EXPECT_EQ(store::DecodeHexToText(store::EncodeHexText(emoji)), emoji);
}

TEST(HexText, ForeignCharactersCountAsZero) {
  struct {
    const char* hex;
    std::string bytes;
  } cases[] = {
      {"1a", std::string(1, '\x01')},  // lower case is not a digit here
      {"G4", std::string(1, '\x40')},
      {"4G", std::string(1, '\x04')},
      {"zz14", std::string("\x00"
                           "A",
                           2)},
      {"141", "A"},  // a lone trailing digit is dropped
      {"1", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(store::DecodeHexToUtf8(c.hex), c.bytes) << c.hex;
}

TEST(HexText, BrokenUtf8DecodesToReplacementNotCrash) {
  // "FF" is the byte 0xFF, never valid UTF-8.
  EXPECT_EQ(store::DecodeHexToText("FF14"), WString(u"\uFFFDA"));
}

}  // namespace

#include "platform/strings.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

struct Utf8Case {
  const char* name;
  std::string bytes;
  std::u16string expected;
};

void PrintTo(const Utf8Case& c, std::ostream* os) {
  *os << c.name;
}

class Utf8Decoding : public testing::TestWithParam<Utf8Case> {};

TEST_P(Utf8Decoding, ReplacesEachBadSequence) {
  EXPECT_EQ(Utf8ToUtf16(GetParam().bytes), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Utf8Decoding,
    testing::Values(Utf8Case{"ascii", "abc", u"abc"}, Utf8Case{"chinese", "登录通知", u"登录通知"},
                    Utf8Case{"astral", "\xF0\x9F\x98\x80", u"\U0001F600"},
                    Utf8Case{"stray_continuation", "a\x80z", u"a\uFFFDz"},
                    Utf8Case{"overlong_slash", "\xC0\xAF", u"\uFFFD"},
                    Utf8Case{"encoded_surrogate", "\xED\xA0\x80", u"\uFFFD"},
                    Utf8Case{"above_max", "\xF4\x90\x80\x80", u"\uFFFD"},
                    Utf8Case{"truncated_at_end", "ok\xE4\xB8", u"ok\uFFFD"},
                    Utf8Case{"truncated_before_ascii", "\xE4x", u"\uFFFDx"},
                    Utf8Case{"invalid_lead", "\xFF\xFE", u"\uFFFD\uFFFD"},
                    Utf8Case{"embedded_nul", std::string("a\0b", 3), std::u16string(u"a\0b", 3)}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Utf16ToUtf8, RoundTripsValidTextAndReplacesLoneSurrogates) {
  const std::u16string text = u"群名称 changed to «Ω» \U0001F600";
  EXPECT_EQ(Utf8ToUtf16(Utf16ToUtf8(text)), text);
  EXPECT_EQ(Utf16ToUtf8(u"a\xD800"
                        u"b"),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Utf16ToUtf8(std::u16string(1, char16_t(0xDC00))), "\xEF\xBF\xBD");
}

TEST(IsValidUtf8, TellsWellFormedFromMalformed) {
  EXPECT_TRUE(IsValidUtf8("\xEF\xBF\xBD"));  // a real U+FFFD is fine
  EXPECT_FALSE(IsValidUtf8("\xC0\xAF"));
  EXPECT_FALSE(IsValidUtf8("abc\xE4"));
}

TEST(Gbk, RoundTripsChinese) {
  const std::u16string text = u"您的账号在其他设备登录!!!";
  const std::string gbk = Utf16ToGbk(text);
  EXPECT_EQ(gbk.substr(0, 2), "\xC4\xFA");  // 您
  EXPECT_EQ(GbkToUtf16(gbk), text);
}

TEST(Gbk, UnencodableAndUndecodableInputIsReplaced) {
  EXPECT_EQ(Utf16ToGbk(u"a\U0001F600b"), "a?b");
  EXPECT_EQ(Utf16ToGbk(u"x\xD800y"), "x?y");
  EXPECT_EQ(GbkToUtf16("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(GbkToUtf16("a\xC4"), u"a\uFFFD");  // truncated double byte
}

TEST(Ansi, AsciiSurvivesAnyLocale) {
  EXPECT_EQ(Utf16ToAnsi(u"Chat.db"), "Chat.db");
  EXPECT_EQ(AnsiToUtf16("Chat.db"), u"Chat.db");
}

TEST(ToUpper, FoldsLettersAndKeepsTheRest) {
  EXPECT_EQ(ToUpper(u"abc-XYZ 1"), u"ABC-XYZ 1");
  EXPECT_EQ(ToUpper(u"straße éa"), u"STRAßE ÉA");
  EXPECT_EQ(ToUpper(u"张三"), u"张三");
  EXPECT_EQ(ToUpper(u"\U0001F600"), u"\U0001F600");
}

}  // namespace

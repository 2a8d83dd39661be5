// The add-friend dialog's rules for the typed account text.
#include "service/panes/account_text.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

namespace {

using service::AccountTextCheck;

struct TextCase {
  const char* name;
  const char* text;  // UTF-8
  AccountTextCheck expected;
};

void PrintTo(const TextCase& c, std::ostream* os) {
  *os << c.name;
}

class AccountTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(AccountTextTest, Check) {
  EXPECT_EQ(service::CheckAccountText(platform::W(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AccountTextTest,
    testing::Values(
        TextCase{"empty", "", AccountTextCheck::kEmpty},
        TextCase{"mobile_11_digits", "13800138000", AccountTextCheck::kValid},
        TextCase{"mobile_10_digits", "1380013800", AccountTextCheck::kBadMobile},
        TextCase{"mobile_12_digits", "138001380001", AccountTextCheck::kBadMobile},
        TextCase{"mobile_leading_2", "23800138000", AccountTextCheck::kBadMobile},
        TextCase{"mobile_with_letter", "1380013800a", AccountTextCheck::kBadMobile},
        TextCase{"mobile_fullwidth_digit", "1380013800１", AccountTextCheck::kBadMobile},
        TextCase{"email_plain", "bob@example.com", AccountTextCheck::kValid},
        TextCase{"email_single_letter_domain", "a@b", AccountTextCheck::kBadEmail},
        TextCase{"email_two_letter_domain", "a@bc", AccountTextCheck::kBadEmail},
        // The unescaped dot takes any character: no dot needed at all.
        TextCase{"email_three_letters_no_dot", "a@bcd", AccountTextCheck::kValid},
        TextCase{"email_any_char_as_dot", "a@b!c", AccountTextCheck::kValid},
        TextCase{"email_two_dots_in_a_row", "a@b..c", AccountTextCheck::kBadEmail},
        TextCase{"email_domain_ends_with_dot", "a@bc.", AccountTextCheck::kBadEmail},
        TextCase{"email_empty_local_part", "@example.com", AccountTextCheck::kBadEmail},
        TextCase{"email_dot_in_local_part", "bob.smith@example.com", AccountTextCheck::kBadEmail},
        TextCase{"email_second_at_taken_by_dot", "a@b@c", AccountTextCheck::kValid},
        // The class is matched byte by byte in GBK: 一 (D2 BB) and 张 (D5 C5)
        // pass, 啊 (B0 A1) does not; a character GBK lacks becomes '?'.
        TextCase{"email_gbk_yi", "一@qq.com", AccountTextCheck::kValid},
        TextCase{"email_gbk_zhang", "张@qq.com", AccountTextCheck::kValid},
        TextCase{"email_gbk_a", "啊@qq.com", AccountTextCheck::kBadEmail},
        TextCase{"email_not_in_gbk", "😀@qq.com", AccountTextCheck::kBadEmail},
        TextCase{"email_chinese_domain", "a@qq.中国", AccountTextCheck::kBadEmail}),
    [](const testing::TestParamInfo<TextCase>& info) { return std::string(info.param.name); });

// Long text that does not match must not take the pattern's exponential time
// (a 40-character domain would take minutes), and text longer than any
// address is refused.
TEST(AccountText, LongDomainsAnswerAtOnceAndOverlongTextIsNoAddress) {
  EXPECT_FALSE(service::IsEmailAddress(u"a@" + WString(200, u'b') + u"!"));
  EXPECT_TRUE(service::IsEmailAddress(u"a@" + WString(200, u'b')));
  EXPECT_FALSE(service::IsEmailAddress(u"a@" + WString(service::kMaxAccountTextLength, u'b')));
}

// The early refusal must never change the pattern's answer: compared with the
// plain pattern on many short texts of the characters that matter.
TEST(AccountText, EarlyRefusalAgreesWithThePattern) {
  const std::regex pattern("^[A-Za-z0-9\xD2\xBB-\xFD\x9B]+@[a-zA-Z0-9_-]+(.[a-zA-Z0-9_-]+)+$");
  const char16_t alphabet[] = u"aZ9_-.@!一啊 ";
  std::mt19937 random(18);
  std::uniform_int_distribution<size_t> pick(0, std::char_traits<char16_t>::length(alphabet) - 1);
  std::uniform_int_distribution<int> length(1, 9);
  for (int i = 0; i < 20000; ++i) {
    WString text;
    for (int n = length(random); n > 0; --n) text += alphabet[pick(random)];
    if (i % 2 == 0) text.insert(text.size() / 2, u"@");
    const bool expected = std::regex_match(platform::Utf16ToGbk(text), pattern);
    ASSERT_EQ(service::IsEmailAddress(text), expected) << platform::Utf16ToUtf8(text);
  }
}

}  // namespace

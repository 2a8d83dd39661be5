// The toolkit-free rules of the conversation list and of history paging.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "ui/main/conversation_rules.h"
#include "ui/main/history_paging.h"

namespace {

using namespace ui::main;

std::time_t Local(int year, int month, int day, int hour, int minute) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_isdst = -1;
  return std::mktime(&t);
}

TEST(ConversationRules, TimeTextIsHourAndMinuteTodayAndTheDateOtherwise) {
  std::time_t now = Local(2026, 11, 23, 14, 30);
  struct Case {
    uint64_t when;
    const char16_t* text;
  } cases[] = {
      {static_cast<uint64_t>(Local(2026, 11, 23, 9, 5)), u"09:05"},
      {static_cast<uint64_t>(Local(2024, 3, 7, 9, 5)), u"2024-03-07"},
      {static_cast<uint64_t>(Local(2026, 11, 22, 23, 59)), u"2026-11-22"},
      {static_cast<uint64_t>(Local(2026, 11, 23, 0, 0)), u"00:00"},
      {0, u"14:30"},  // unknown: now
  };
  for (const Case& c : cases) EXPECT_EQ(ConversationTimeText(c.when, now), c.text) << c.when;
}

// The hour and minute are the local clock's, also on the day it changes.
TEST(ConversationRules, TimeTextFollowsTheLocalClockOnTheDayItChanges) {
  std::string saved = std::getenv("TZ") ? std::getenv("TZ") : "";
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);  // clocks go forward on 2026-03-29
  tzset();
  EXPECT_EQ(ConversationTimeText(static_cast<uint64_t>(Local(2026, 3, 29, 3, 30)),
                                 Local(2026, 3, 29, 14, 30)),
            u"03:30");
  if (saved.empty()) {
    unsetenv("TZ");
  } else {
    setenv("TZ", saved.c_str(), 1);
  }
  tzset();
}

TEST(ConversationRules, PreviewIsTheLastTextElement) {
  auto elem = [](int32_t type, const char16_t* text) {
    ElemStru e;
    e.elem_type = type;
    e.text = text;
    return e;
  };
  struct Case {
    std::vector<ElemStru> elems;
    const char16_t* preview;
  } cases[] = {
      {{}, u""},
      {{elem(kElemImage, u"")}, u""},
      {{elem(kElemText, u"一"), elem(kElemText, u"二")}, u"二"},
      {{elem(kElemText, u"一"), elem(kElemFile, u"文件")}, u"一"},
      {{elem(kElemText, u"一二三四五六七八九十一二三四五")}, u"一二三四五六七八九十一二三…"},
      {{elem(kElemText, u"第一行\r\n\r\n第二行\t完")}, u"第一行 第二行 完"},
  };
  for (const Case& c : cases) {
    MessageStru message;
    message.elems = c.elems;
    EXPECT_EQ(ConversationPreview(message), c.preview);
  }
}

TEST(ConversationRules, LongPreviewsAreCutByColumnsWithAnEllipsis) {
  struct Case {
    const char16_t* text;
    int columns;
    const char16_t* preview;
  } cases[] = {
      {u"abcdef", 6, u"abcdef"},  // fits exactly
      {u"abcdefg", 6, u"abcd…"},  // the ellipsis takes two columns
      {u"王工abc", 7, u"王工abc"},
      {u"王工abcd", 7, u"王工a…"},  // wide characters take two
      {u"ab王工", 5, u"ab…"},       // a wide character is not half kept
      {u"a😀😀😀", 6, u"a😀…"},         // nor a surrogate pair split
      {u"", 6, u""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CutPreview(c.text, c.columns), c.preview) << platform::Utf16ToUtf8(c.text);
  }
}

TEST(ConversationRules, SearchIsAnUpperCasedSubstringTest) {
  struct Case {
    const char16_t* name;
    const char16_t* search;
    bool kept;
  } cases[] = {
      {u"xABy", u"ab", true}, {u"a b", u"ab", false}, {u"王工", u"", true},
      {u"王工", u"工", true}, {u"", u"a", false},     {u"ABC", u"abcd", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MatchesSearch(c.name, c.search), c.kept)
        << platform::Utf16ToUtf8(c.name) << " / " << platform::Utf16ToUtf8(c.search);
  }
}

TEST(HistoryPaging, AWheelTurnFetchesAtTheEdgeOnlyOutsideTheOneSecondGate) {
  struct Case {
    int delta;
    uint64_t now;
    std::optional<uint64_t> last;
    int pos;
    int range;
    PageFetch fetch;
  } cases[] = {
      {120, 5000, std::nullopt, 0, 300, PageFetch::kOlder},
      {120, 5000, 4001, 0, 300, PageFetch::kNone},  // within a second
      {120, 5000, 4000, 0, 300, PageFetch::kOlder},
      {120, 5000, std::nullopt, 10, 300, PageFetch::kNone},  // not at the top
      {-120, 5000, std::nullopt, 300, 300, PageFetch::kNewer},
      {-120, 5000, std::nullopt, 299, 300, PageFetch::kNone},
      {0, 5000, std::nullopt, 0, 0, PageFetch::kNewer},  // below 1 counts as towards the user
  };
  for (const Case& c : cases) {
    EXPECT_EQ(DecidePageFetch(c.delta, c.now, c.last, c.pos, c.range), c.fetch)
        << c.delta << " " << c.pos;
  }
}

}  // namespace

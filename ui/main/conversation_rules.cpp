#include "ui/main/conversation_rules.h"

#include <cstdio>

namespace ui::main {
namespace {

WString Format(const char* format, int a, int b, int c = 0) {
  char text[32];
  std::snprintf(text, sizeof text, format, a, b, c);
  return platform::Utf8ToUtf16(text);
}

// East Asian wide and full-width characters (and the emoji planes), which
// take two columns.
bool IsWide(char32_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) ||
         (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1F64F) ||
         (c >= 0x1F900 && c <= 0x1F9FF) || (c >= 0x20000 && c <= 0x3FFFD);
}

WString DateText(const std::tm& t) {
  return Format("%4d-%02d-%02d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
}

}  // namespace

ConversationTimes::ConversationTimes(std::time_t now) : now_(now) {
  localtime_r(&now_, &today_);
}

const ConversationTimes::Day& ConversationTimes::DayOf(std::time_t when) const {
  if (when >= day_.start && when < day_.end) return day_;
  std::tm midnight{};
  localtime_r(&when, &midnight);
  // The dates are compared as numbers: their texts hold only digits and
  // dashes, so this is the case-blind text comparison.
  bool today = midnight.tm_year == today_.tm_year && midnight.tm_mon == today_.tm_mon &&
               midnight.tm_mday == today_.tm_mday;
  WString date = DateText(midnight);
  midnight.tm_hour = midnight.tm_min = midnight.tm_sec = 0;
  midnight.tm_isdst = -1;  // the day may start in another offset than `when`
  std::tm next = midnight;
  ++next.tm_mday;
  std::time_t start = mktime(&midnight);
  std::time_t end = mktime(&next);
  if (start == -1 || end == -1 || when < start || when >= end) {
    // A calendar the library cannot convert back: this time alone.
    start = when;
    end = when + 1;
  }
  day_ = Day{start, end, today, std::move(date)};
  return day_;
}

WString ConversationTimes::Text(uint64_t seconds) const {
  std::time_t when = seconds == 0 ? now_ : static_cast<std::time_t>(seconds);
  const Day& day = DayOf(when);
  if (!day.today) return day.date;
  std::tm whenTm{};
  if (day.end - day.start == 24 * 3600) {
    std::time_t since = when - day.start;  // no clock change today
    whenTm.tm_hour = static_cast<int>(since / 3600);
    whenTm.tm_min = static_cast<int>(since % 3600 / 60);
  } else {
    localtime_r(&when, &whenTm);
  }
  return Format("%02d:%02d", whenTm.tm_hour, whenTm.tm_min);
}

WString ConversationTimeText(uint64_t seconds, std::time_t now) {
  return ConversationTimes(now).Text(seconds);
}

// Each run of line breaks and tabs as one space: the preview has one line.
static WString OneLine(const WString& text) {
  WString line;
  line.reserve(text.size());
  bool inBreak = false;
  for (char16_t c : text) {
    const bool isBreak = c == u'\r' || c == u'\n' || c == u'\t';
    if (isBreak && !inBreak) line += u' ';
    if (!isBreak) line += c;
    inBreak = isBreak;
  }
  return line;
}

WString ConversationPreview(const MessageStru& lastMessage) {
  const WString* preview = nullptr;
  for (const ElemStru& elem : lastMessage.elems) {
    if (elem.elem_type == kElemText) preview = &elem.text;
  }
  return preview ? CutPreview(OneLine(*preview)) : WString();
}

WString CutPreview(const WString& text, int columns) {
  constexpr int kEllipsisColumns = 2;  // CJK fonts draw "…" full-width
  size_t fitting = 0;                  // the end of the start that leaves room for "…"
  int used = 0;
  for (size_t i = 0; i < text.size();) {
    char32_t c = text[i];
    size_t units = 1;
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      units = 2;
    }
    used += IsWide(c) ? 2 : 1;
    if (used > columns) return text.substr(0, fitting) + u"…";
    i += units;
    if (used <= columns - kEllipsisColumns) fitting = i;
  }
  return text;
}

bool MatchesSearch(const WString& name, const WString& search) {
  if (search.empty()) return true;
  return platform::ToUpper(name).find(platform::ToUpper(search)) != WString::npos;
}

}  // namespace ui::main

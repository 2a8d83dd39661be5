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

WString ConversationTimeText(uint64_t seconds, std::time_t now) {
  std::time_t when = seconds == 0 ? now : static_cast<std::time_t>(seconds);
  std::tm today{};
  std::tm at{};
  localtime_r(&now, &today);
  localtime_r(&when, &at);
  // The dates are compared as numbers: their texts hold only digits and
  // dashes, so this is the case-blind text comparison.
  if (at.tm_year != today.tm_year || at.tm_mon != today.tm_mon || at.tm_mday != today.tm_mday) {
    return DateText(at);
  }
  return Format("%02d:%02d", at.tm_hour, at.tm_min);
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

#include "ui/main/conversation_rules.h"

#include <cstdio>

namespace ui::main {
namespace {

WString Format(const char* format, int a, int b, int c = 0) {
  char text[32];
  std::snprintf(text, sizeof text, format, a, b, c);
  return platform::Utf8ToUtf16(text);
}

WString DateText(const std::tm& t) {
  return Format("%4d-%02d-%02d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
}

}  // namespace

ConversationTimes::ConversationTimes(std::time_t now) : now_(now) {
  localtime_r(&now_, &today_);
}

WString ConversationTimes::Text(uint64_t seconds) const {
  std::time_t when = seconds == 0 ? now_ : static_cast<std::time_t>(seconds);
  std::tm whenTm{};
  localtime_r(&when, &whenTm);
  // The dates are compared as numbers: their texts hold only digits and
  // dashes, so this is the case-blind text comparison.
  if (whenTm.tm_year == today_.tm_year && whenTm.tm_mon == today_.tm_mon &&
      whenTm.tm_mday == today_.tm_mday) {
    return Format("%02d:%02d", whenTm.tm_hour, whenTm.tm_min);
  }
  return DateText(whenTm);
}

WString ConversationTimeText(uint64_t seconds, std::time_t now) {
  return ConversationTimes(now).Text(seconds);
}

WString ConversationPreview(const MessageStru& lastMessage) {
  WString preview;
  for (const ElemStru& elem : lastMessage.elems) {
    if (elem.elem_type == kElemText) preview = elem.text;
  }
  return preview;
}

bool MatchesSearch(const WString& name, const WString& search) {
  if (search.empty()) return true;
  return platform::ToUpper(name).find(platform::ToUpper(search)) != WString::npos;
}

}  // namespace ui::main

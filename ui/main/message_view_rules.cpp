#include "ui/main/message_view_rules.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace ui::main {
namespace {

std::tm LocalTime(std::time_t time) {
  std::tm tm{};
  localtime_r(&time, &tm);
  return tm;
}

WString Ascii(const char* text) {
  return WString(text, text + std::char_traits<char>::length(text));
}

}  // namespace

bool IsDrawingElem(const ElemStru& elem) {
  return elem.elem_type == kElemCustom && elem.drawing.subType == kCustomDrawing;
}

bool IsNotice(const ElemStru& elem) {
  return elem.elem_type == kElemLocalNotice ||
         (elem.elem_type == kElemCustom && elem.drawing.subType == kCustomNotice);
}

std::string_view TemplateFor(const ElemStru& elem, bool fromSelf) {
  if (IsNotice(elem)) return kSystemReminderTemplate;
  return fromSelf ? kMyselfTemplate : kFriendTemplate;
}

// Every item's header is formatted on every rebuild: digits by hand.
WString ItemHeader(const WString& senderName, std::time_t time) {
  const std::tm tm = LocalTime(time);
  WString header;
  header.reserve(senderName.size() + 17);
  header += senderName;
  header += u' ';
  const auto digits = [&header](int value, int width) {
    char16_t text[8];
    for (int i = width - 1; i >= 0; --i, value /= 10)
      text[i] = static_cast<char16_t>(u'0' + value % 10);
    header.append(text, static_cast<size_t>(width));
  };
  digits(std::clamp(tm.tm_year + 1900, 0, 9999), 4);
  header += u'/';
  digits(tm.tm_mon + 1, 2);
  header += u'/';
  digits(tm.tm_mday, 2);
  header += u' ';
  digits(tm.tm_hour, 2);
  header += u':';
  digits(tm.tm_min, 2);
  return header;
}

WString FileTypeKey(const WString& fileName) {
  static const std::array<std::u16string_view, 15> kKnown = {
      u"BMP", u"DOCX", u"DWG",  u"DXF", u"FON", u"JPG",  u"OCF", u"PDF",
      u"PNG", u"PPT",  u"PPTX", u"RAR", u"XLS", u"XLSX", u"ZIP"};
  size_t dot = fileName.rfind(u'.');
  size_t slash = fileName.find_last_of(u"/\\");
  if (dot == WString::npos || (slash != WString::npos && dot < slash)) return u"UNKNOW";
  WString ext = fileName.substr(dot + 1);
  for (char16_t& c : ext) {
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
  }
  bool known = std::find(kKnown.begin(), kKnown.end(), std::u16string_view(ext)) != kKnown.end();
  return known ? ext : u"UNKNOW";
}

TransferState ExpireStalledPicture(TransferState state, std::time_t started, std::time_t now) {
  if (state == TransferState::kInProgress && now - started >= kPictureStallSeconds) {
    return TransferState::kFailed;
  }
  return state;
}

std::u16string_view PictureStateImage(TransferState state) {
  switch (state) {
    case TransferState::kInProgress:
      return u"loading.gif";
    case TransferState::kFailed:
      return u"image_error.png";
    case TransferState::kDone:
      return u"";
    case TransferState::kNone:
      break;
  }
  return u"LOAD_IMAGE.png";
}

WString VoiceLabel(int32_t seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%d s", seconds);
  return Ascii(text);
}

WString SizeText(int64_t bytes) {
  char text[32];
  if (bytes < 0) bytes = 0;
  if (bytes < 1024) {
    std::snprintf(text, sizeof text, "%lld B", static_cast<long long>(bytes));
  } else if (bytes < 1024 * 1024) {
    std::snprintf(text, sizeof text, "%.1f KB", static_cast<double>(bytes) / 1024.0);
  } else {
    std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
  }
  return Ascii(text);
}

bool NeedsTimeSeparator(std::time_t previous, std::time_t current) {
  return current - previous > kSeparatorGapSeconds;
}

WString SeparatorText(std::time_t time, std::time_t now) {
  std::tm tm = LocalTime(time);
  std::tm today = LocalTime(now);
  char text[64];
  if (tm.tm_year == today.tm_year && tm.tm_yday == today.tm_yday) {
    std::snprintf(text, sizeof text, "%02d:%02d", tm.tm_hour, tm.tm_min);
  } else {
    std::snprintf(text, sizeof text, "%04d/%02d/%02d %02d:%02d", tm.tm_year + 1900, tm.tm_mon + 1,
                  tm.tm_mday, tm.tm_hour, tm.tm_min);
  }
  return Ascii(text);
}

}  // namespace ui::main

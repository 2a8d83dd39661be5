#pragma once
// Notifications that skin controls send to their window, by event type and
// sending control, in the vocabulary the window code is written in.

#include <string>
#include <string_view>

#include "platform/window_messages.h"
#include "ui/kit/control.h"

namespace ui {

using platform::LPARAM;
using platform::WPARAM;

// Event type strings.
inline constexpr std::string_view kNotifyWindowInit = "windowinit";
inline constexpr std::string_view kNotifyClick = "click";
inline constexpr std::string_view kNotifyItemClick = "itemclick";
inline constexpr std::string_view kNotifyTextChanged = "textchanged";
inline constexpr std::string_view kNotifyReturn = "return";
inline constexpr std::string_view kNotifyKillFocus = "killfocus";
inline constexpr std::string_view kNotifySetFocus = "setfocus";
inline constexpr std::string_view kNotifySelectChanged = "selectchanged";
inline constexpr std::string_view kNotifyRButtonUp = "rbuttonup";
inline constexpr std::string_view kNotifyMenu = "menu_msg";

// Control names compared without regard to (ASCII) case, as some handlers do.
inline bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  for (size_t i = 0; i < a.size(); ++i) {
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

struct TNotifyUI {
  std::string sType;
  Control pSender;  // empty for "windowinit"
  Point ptMouse;    // window coordinates, for mouse events
  WPARAM wParam = 0;
  LPARAM lParam = 0;
};

}  // namespace ui

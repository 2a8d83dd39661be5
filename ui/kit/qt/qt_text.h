#pragma once
// Texts between the kit's vocabulary (UTF-16 WString, UTF-8 names) and Qt.

#include <QString>

#include <string_view>

#include "platform/strings.h"

namespace ui::qt {

inline QString ToQ(const WString& s) {
  return QString::fromUtf16(s.data(), static_cast<qsizetype>(s.size()));
}
inline QString ToQ(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}
inline WString FromQ(const QString& s) {
  return WString(reinterpret_cast<const char16_t*>(s.utf16()), static_cast<size_t>(s.size()));
}

}  // namespace ui::qt

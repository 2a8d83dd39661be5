#pragma once
// Texts exchanged with the SDK: UTF-8 going out, made safe to trace and copy
// coming in.

#include <string>

#include "platform/strings.h"

namespace service {

inline std::string Utf8(const WString& text) {
  return platform::Utf16ToUtf8(text);
}

inline const char* OrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

}  // namespace service

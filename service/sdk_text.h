#pragma once
// Texts handed over by the SDK, made safe to trace and copy.

namespace service {

inline const char* OrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

}  // namespace service

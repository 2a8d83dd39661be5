#pragma once
// Texts exchanged with the SDK: UTF-8 going out, made safe to trace and copy
// coming in.

#include <string>

#include "platform/strings.h"
#include "platform/trace.h"

namespace service {

inline std::string Utf8(const WString& text) {
  return platform::Utf16ToUtf8(text);
}

// Traces `enter` now and `exit` when it goes.
class TracedScope {
 public:
  TracedScope(const char* enter, const char* exit) : exit_(exit) { platform::Trace("%s", enter); }
  ~TracedScope() { platform::Trace("%s", exit_); }
  TracedScope(const TracedScope&) = delete;
  TracedScope& operator=(const TracedScope&) = delete;

 private:
  const char* exit_;
};

// Traces "<name> enter!!!!!!" now and "<name> exit!!!!!!" when it goes.
class EnterExitTrace {
 public:
  explicit EnterExitTrace(const char* name) : name_(name) {
    platform::Trace("%s enter!!!!!!", name_);
  }
  ~EnterExitTrace() { platform::Trace("%s exit!!!!!!", name_); }
  EnterExitTrace(const EnterExitTrace&) = delete;
  EnterExitTrace& operator=(const EnterExitTrace&) = delete;

 private:
  const char* name_;
};

inline const char* OrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

}  // namespace service

#pragma once
// The module's printf-style trace points. As delivered they write nothing;
// IM_TRACE=<file> appends one line per call (time, thread id, UTF-8 text),
// and tests install a capture to assert on the texts.

#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

void Trace(const char* format, ...) __attribute__((format(printf, 1, 2)));

// True when some trace output is wanted; callers may skip building costly
// arguments when it is false.
bool TraceEnabled();

// Collects every trace text (without time and thread) while it lives.
// Captures may nest and may be fed from any thread.
class ScopedTraceCapture {
 public:
  ScopedTraceCapture();
  ~ScopedTraceCapture();
  ScopedTraceCapture(const ScopedTraceCapture&) = delete;
  ScopedTraceCapture& operator=(const ScopedTraceCapture&) = delete;

  std::vector<std::string> Lines() const;
  // Number of lines that contain `fragment`.
  size_t Count(std::string_view fragment) const;
  bool Contains(std::string_view fragment) const { return Count(fragment) > 0; }
  void Clear();

  void Append(std::string line);

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace platform

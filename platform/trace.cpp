#include "platform/trace.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace platform {
namespace {

struct TraceState {
  std::mutex mutex;
  std::FILE* file = nullptr;
  std::vector<ScopedTraceCapture*> captures;
  std::atomic<bool> enabled{false};

  TraceState() {
    const char* path = std::getenv("IM_TRACE");
    if (path && *path) file = std::fopen(path, "a");
    enabled = file != nullptr;
  }
};

TraceState& State() {
  // Never destroyed: trace points may run during static destruction.
  static TraceState* state = new TraceState;
  return *state;
}

std::string FormatV(const char* format, va_list args) {
  char small[512];
  va_list copy;
  va_copy(copy, args);
  int n = std::vsnprintf(small, sizeof small, format, copy);
  va_end(copy);
  if (n < 0) return format;
  if (static_cast<size_t>(n) < sizeof small) return std::string(small, n);
  std::string out(static_cast<size_t>(n) + 1, '\0');
  std::vsnprintf(out.data(), out.size(), format, args);
  out.resize(n);
  return out;
}

void WriteLine(std::FILE* file, const std::string& text) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
  std::fprintf(file, "%s.%03ld [%ld] %s\n", stamp, now.tv_nsec / 1000000,
               static_cast<long>(syscall(SYS_gettid)), text.c_str());
  std::fflush(file);
}

}  // namespace

bool TraceEnabled() {
  return State().enabled.load(std::memory_order_relaxed);
}

void Trace(const char* format, ...) {
  TraceState& state = State();
  if (!state.enabled.load(std::memory_order_relaxed) || format == nullptr) return;
  va_list args;
  va_start(args, format);
  std::string text = FormatV(format, args);
  va_end(args);
  std::lock_guard lock(state.mutex);
  if (state.file) WriteLine(state.file, text);
  for (ScopedTraceCapture* capture : state.captures) capture->Append(text);
}

ScopedTraceCapture::ScopedTraceCapture() {
  TraceState& state = State();
  std::lock_guard lock(state.mutex);
  state.captures.push_back(this);
  state.enabled = true;
}

ScopedTraceCapture::~ScopedTraceCapture() {
  TraceState& state = State();
  std::lock_guard lock(state.mutex);
  std::erase(state.captures, this);
  state.enabled = state.file != nullptr || !state.captures.empty();
}

void ScopedTraceCapture::Append(std::string line) {
  std::lock_guard lock(mutex_);
  lines_.push_back(std::move(line));
}

std::vector<std::string> ScopedTraceCapture::Lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

size_t ScopedTraceCapture::Count(std::string_view fragment) const {
  std::lock_guard lock(mutex_);
  return std::count_if(lines_.begin(), lines_.end(), [&](const std::string& line) {
    return line.find(fragment) != std::string::npos;
  });
}

void ScopedTraceCapture::Clear() {
  std::lock_guard lock(mutex_);
  lines_.clear();
}

}  // namespace platform

#include "platform/window_messages.h"

#include <shared_mutex>
#include <unordered_map>

namespace platform {
namespace {

struct Registry {
  std::shared_mutex mutex;
  std::unordered_map<std::uint64_t, MessageDelivery> windows;
  std::uint64_t next = 1;
};

Registry& TheRegistry() {
  static Registry* registry = new Registry;  // outlives every window
  return *registry;
}

}  // namespace

WindowHandle RegisterWindow(MessageDelivery deliver) {
  Registry& r = TheRegistry();
  std::unique_lock lock(r.mutex);
  std::uint64_t id = r.next++;
  r.windows.emplace(id, std::move(deliver));
  return static_cast<WindowHandle>(id);
}

void UnregisterWindow(WindowHandle handle) {
  Registry& r = TheRegistry();
  std::unique_lock lock(r.mutex);
  r.windows.erase(static_cast<std::uint64_t>(handle));
}

bool IsWindow(WindowHandle handle) {
  Registry& r = TheRegistry();
  std::shared_lock lock(r.mutex);
  return r.windows.count(static_cast<std::uint64_t>(handle)) != 0;
}

bool PostMessage(WindowHandle handle, unsigned msg, WPARAM wParam, LPARAM lParam) {
  Registry& r = TheRegistry();
  std::shared_lock lock(r.mutex);
  auto it = r.windows.find(static_cast<std::uint64_t>(handle));
  if (it == r.windows.end()) return false;
  it->second(WindowMessage{msg, wParam, lParam});
  return true;
}

QueuedWindow::QueuedWindow()
    : handle_(RegisterWindow([this](const WindowMessage& m) {
        {
          std::lock_guard lock(mutex_);
          queue_.push_back(m);
        }
        arrived_.notify_all();
      })) {}

QueuedWindow::~QueuedWindow() {
  Destroy();
}

void QueuedWindow::Destroy() {
  UnregisterWindow(handle_);
}

std::optional<WindowMessage> QueuedWindow::Take() {
  std::lock_guard lock(mutex_);
  if (queue_.empty()) return std::nullopt;
  WindowMessage m = queue_.front();
  queue_.pop_front();
  return m;
}

std::optional<WindowMessage> QueuedWindow::WaitFor(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  if (!arrived_.wait_for(lock, timeout, [this] { return !queue_.empty(); })) return std::nullopt;
  WindowMessage m = queue_.front();
  queue_.pop_front();
  return m;
}

std::vector<WindowMessage> QueuedWindow::TakeAll() {
  std::lock_guard lock(mutex_);
  std::vector<WindowMessage> all(queue_.begin(), queue_.end());
  queue_.clear();
  return all;
}

size_t QueuedWindow::Pending() const {
  std::lock_guard lock(mutex_);
  return queue_.size();
}

}  // namespace platform

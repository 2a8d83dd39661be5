#include "imsdk/failure_queue.h"

namespace imsdk {

FailureQueue& FailureQueue::Calls() {
  static FailureQueue queue;
  return queue;
}

FailureQueue& FailureQueue::Results() {
  static FailureQueue queue;
  return queue;
}

void FailureQueue::Push(const std::string& function, int code) {
  std::lock_guard lock(mutex_);
  codes_[function].push_back(code);
}

int FailureQueue::Take(const std::string& function) {
  std::lock_guard lock(mutex_);
  auto it = codes_.find(function);
  if (it == codes_.end() || it->second.empty()) return 0;
  int code = it->second.front();
  it->second.pop_front();
  if (it->second.empty()) codes_.erase(it);
  return code;
}

void FailureQueue::Clear() {
  std::lock_guard lock(mutex_);
  codes_.clear();
}

}  // namespace imsdk

#pragma once
// Failures queued by EngineControl: the return code of the next call of a
// function, or the result code of its next accepted call.
#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace imsdk {

class FailureQueue {
 public:
  static FailureQueue& Calls();
  static FailureQueue& Results();
  void Push(const std::string& function, int code);
  // The oldest code queued for `function` (removed), 0 when none.
  int Take(const std::string& function);
  void Clear();

 private:
  std::mutex mutex_;
  std::map<std::string, std::deque<int>> codes_;
};

}  // namespace imsdk

#pragma once
// The SDK's one callback thread: a queue of user callbacks and of internal
// tasks (delayed engine work), run one at a time in the order posted.
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace imsdk {

class CallbackThread {
 public:
  CallbackThread();
  ~CallbackThread();
  CallbackThread(const CallbackThread&) = delete;
  CallbackThread& operator=(const CallbackThread&) = delete;

  // A user callback. Ignored after Stop.
  void Post(std::function<void()> callback);
  // Internal work, queued once `delay` has passed.
  void PostInternal(std::chrono::milliseconds delay, std::function<void()> task);
  // Waits until every user callback posted before the call has run or been
  // discarded. Must not be called on the callback thread.
  void Drain();
  // Drops the user callbacks still queued (internal tasks stay).
  void DiscardPendingCallbacks();
  // Drops everything queued, waits for the running item, ends the thread.
  // Must not be called on the callback thread.
  void Stop();
  bool IsCurrentThread() const;

 private:
  struct Item {
    std::function<void()> fn;
    bool user = false;
  };
  void Run();
  void MoveDueTasksLocked(std::chrono::steady_clock::time_point now);
  void CountDoneLocked(uint64_t n);

  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable done_changed_;
  std::deque<Item> queue_;
  std::multimap<std::chrono::steady_clock::time_point, std::function<void()>> delayed_;
  uint64_t user_posted_ = 0;
  uint64_t user_done_ = 0;
  bool stopping_ = false;
  std::thread::id thread_id_;
  std::thread thread_;
};

}  // namespace imsdk

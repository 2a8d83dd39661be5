#pragma once
// The module's own short-lived threads (the delayed notice after a picture
// download, the drawing upload). Their code lives in the module library, so
// none may still run once the library is unmapped: unloading stops them and
// waits for every one, and starts no more.

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace platform {

class ModuleWorkers {
 public:
  // The module's one set (never destroyed: it must outlive every worker).
  static ModuleWorkers& Instance();

  ModuleWorkers() = default;
  ~ModuleWorkers();
  ModuleWorkers(const ModuleWorkers&) = delete;
  ModuleWorkers& operator=(const ModuleWorkers&) = delete;

  // Runs `work` on a thread of its own; `stop` is requested when the module
  // stops, and work that waits should end early then. An exception leaving
  // `work` is traced, never thrown on. False, and nothing runs, while
  // StopAll is under way.
  bool Start(std::function<void(std::stop_token stop)> work);

  // Waits until every worker started so far has finished.
  void WaitIdle();

  // Requests stop of every worker and waits until all have finished,
  // refusing new ones meanwhile (the library is about to be unloaded).
  void StopAll();

 private:
  void JoinFinishedLocked(std::list<std::thread>& out);

  std::mutex mutex_;
  std::condition_variable finished_;
  std::stop_source stop_;
  bool stopping_ = false;
  size_t running_ = 0;
  std::list<std::thread> threads_;
  std::list<std::thread::id> done_;  // finished, not joined yet
};

// Waits `delay`, or less when `stop` is requested; true when the whole delay
// passed.
bool SleepUnlessStopped(std::stop_token stop, std::chrono::milliseconds delay);

}  // namespace platform

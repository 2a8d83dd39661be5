#include "platform/module_workers.h"

#include <algorithm>

#include "platform/trace.h"

namespace platform {

ModuleWorkers& ModuleWorkers::Instance() {
  static ModuleWorkers* workers = new ModuleWorkers;
  return *workers;
}

ModuleWorkers::~ModuleWorkers() {
  StopAll();
}

bool ModuleWorkers::Start(std::function<void(std::stop_token)> work) {
  std::list<std::thread> finished;
  std::lock_guard lock(mutex_);
  if (stopping_) {
    Trace("ModuleWorkers: the module is stopping, no new worker");
    return false;
  }
  JoinFinishedLocked(finished);
  ++running_;
  threads_.emplace_back([this, work = std::move(work), stop = stop_.get_token()] {
    try {
      work(stop);
    } catch (const std::exception& fault) {
      Trace("ModuleWorkers: a worker failed: %s", fault.what());
    }
    std::lock_guard lock(mutex_);
    done_.push_back(std::this_thread::get_id());
    --running_;
    finished_.notify_all();
  });
  // Joined outside the lock (they have finished, so this is quick).
  for (std::thread& thread : finished) thread.join();
  return true;
}

void ModuleWorkers::JoinFinishedLocked(std::list<std::thread>& out) {
  for (auto it = threads_.begin(); it != threads_.end();) {
    auto done = std::find(done_.begin(), done_.end(), it->get_id());
    if (done == done_.end()) {
      ++it;
      continue;
    }
    done_.erase(done);
    out.splice(out.end(), threads_, it++);
  }
}

void ModuleWorkers::WaitIdle() {
  std::list<std::thread> finished;
  {
    std::unique_lock lock(mutex_);
    finished_.wait(lock, [this] { return running_ == 0; });
    finished.swap(threads_);
    done_.clear();
  }
  for (std::thread& thread : finished) thread.join();
}

void ModuleWorkers::StopAll() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  stop_.request_stop();
  WaitIdle();
  // Ready for a later start-up of a module that stayed mapped.
  std::lock_guard lock(mutex_);
  stop_ = std::stop_source();
  stopping_ = false;
}

bool SleepUnlessStopped(std::stop_token stop, std::chrono::milliseconds delay) {
  std::mutex mutex;
  std::condition_variable_any wake;
  std::unique_lock lock(mutex);
  wake.wait_for(lock, stop, delay, [] { return false; });
  return !stop.stop_requested();
}

}  // namespace platform

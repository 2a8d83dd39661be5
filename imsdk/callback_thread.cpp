#include "imsdk/callback_thread.h"

namespace imsdk {

CallbackThread::CallbackThread() {
  thread_ = std::thread([this] { Run(); });
  std::lock_guard lock(mutex_);
  thread_id_ = thread_.get_id();
}

CallbackThread::~CallbackThread() {
  Stop();
}

void CallbackThread::Post(std::function<void()> callback) {
  std::lock_guard lock(mutex_);
  if (stopping_) return;
  queue_.push_back({std::move(callback), true});
  ++user_posted_;
  wake_.notify_one();
}

void CallbackThread::PostInternal(std::chrono::milliseconds delay, std::function<void()> task) {
  std::lock_guard lock(mutex_);
  if (stopping_) return;
  if (delay.count() <= 0) {
    queue_.push_back({std::move(task), false});
  } else {
    delayed_.emplace(std::chrono::steady_clock::now() + delay, std::move(task));
  }
  wake_.notify_one();
}

void CallbackThread::Drain() {
  std::unique_lock lock(mutex_);
  const uint64_t target = user_posted_;
  done_changed_.wait(lock, [&] { return user_done_ >= target || stopping_; });
}

void CallbackThread::DiscardPendingCallbacks() {
  std::lock_guard lock(mutex_);
  uint64_t dropped = 0;
  std::deque<Item> kept;
  for (auto& item : queue_) {
    if (item.user) {
      ++dropped;
    } else {
      kept.push_back(std::move(item));
    }
  }
  queue_.swap(kept);
  CountDoneLocked(dropped);
}

void CallbackThread::Stop() {
  {
    std::lock_guard lock(mutex_);
    if (stopping_ && !thread_.joinable()) return;
    stopping_ = true;
    queue_.clear();
    delayed_.clear();
    user_done_ = user_posted_;
    wake_.notify_all();
    done_changed_.notify_all();
  }
  if (thread_.joinable() && !IsCurrentThread()) thread_.join();
}

bool CallbackThread::IsCurrentThread() const {
  std::lock_guard lock(mutex_);
  return std::this_thread::get_id() == thread_id_;
}

void CallbackThread::CountDoneLocked(uint64_t n) {
  user_done_ += n;
  if (n > 0) done_changed_.notify_all();
}

void CallbackThread::MoveDueTasksLocked(std::chrono::steady_clock::time_point now) {
  while (!delayed_.empty() && delayed_.begin()->first <= now) {
    queue_.push_back({std::move(delayed_.begin()->second), false});
    delayed_.erase(delayed_.begin());
  }
}

void CallbackThread::Run() {
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    MoveDueTasksLocked(std::chrono::steady_clock::now());
    if (queue_.empty()) {
      if (delayed_.empty()) {
        wake_.wait(lock);
      } else {
        wake_.wait_until(lock, delayed_.begin()->first);
      }
      continue;
    }
    Item item = std::move(queue_.front());
    queue_.pop_front();
    lock.unlock();
    item.fn();
    item.fn = nullptr;  // captured state is released outside the lock too
    lock.lock();
    if (item.user) CountDoneLocked(1);
  }
}

}  // namespace imsdk

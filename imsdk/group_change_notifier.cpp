#include "imsdk/group_change_notifier.h"

#include <exception>

#include "platform/trace.h"

namespace imsdk {

GroupObserver::~GroupObserver() = default;

namespace {

void Deliver(GroupObserver& observer, const GroupChange& c) {
  using Kind = GroupChange::Kind;
  switch (c.kind) {
    case Kind::kCreated:
      observer.OnGroupCreated(c.group_id, c.text, c.owner, c.members);
      break;
    case Kind::kJoined:
      observer.OnMembersJoined(c.group_id, c.members);
      break;
    case Kind::kLeft:
      observer.OnMembersLeft(c.group_id, c.members);
      break;
    case Kind::kRenamed:
      observer.OnGroupRenamed(c.group_id, c.text);
      break;
    case Kind::kOwnerChanged:
      observer.OnOwnerChanged(c.group_id, c.text);
      break;
    case Kind::kDismissed:
      observer.OnGroupDismissed(c.group_id);
      break;
  }
}

}  // namespace

void GroupChangeNotifier::SetObserver(GroupObserver* observer) {
  std::unique_lock lock(mutex_);
  observer_ = observer;
  if (deliverer_ == std::this_thread::get_id()) return;
  progress_.wait(lock, [&] { return calling_ == nullptr || calling_ == observer_; });
}

uint64_t GroupChangeNotifier::Queue(GroupChange change) {
  std::lock_guard lock(mutex_);
  queue_.push_back({++queued_, std::move(change)});
  return queued_;
}

void GroupChangeNotifier::Flush() {
  std::unique_lock lock(mutex_);
  const std::thread::id self = std::this_thread::get_id();
  const uint64_t target = queued_;
  if (deliverer_ == self || delivered_ >= target) return;
  if (deliverer_ != std::thread::id()) {
    progress_.wait(lock, [&] { return delivered_ >= target; });
    return;
  }
  deliverer_ = self;
  DeliverAllLocked(lock);
  deliverer_ = std::thread::id();
  progress_.notify_all();
}

void GroupChangeNotifier::DeliverAllLocked(std::unique_lock<std::mutex>& lock) {
  while (!queue_.empty()) {
    Numbered next = std::move(queue_.front());
    queue_.pop_front();
    calling_ = observer_;
    if (calling_ != nullptr) {
      GroupObserver* observer = calling_;
      lock.unlock();
      try {
        Deliver(*observer, next.change);
      } catch (const std::exception& e) {
        platform::Trace("imsdk: the group observer failed: %s", e.what());
      } catch (...) {
        platform::Trace("imsdk: the group observer failed");
      }
      lock.lock();
    }
    calling_ = nullptr;
    delivered_ = next.number;
    progress_.notify_all();
  }
}

void GroupChangeNotifier::WaitDelivered(uint64_t number) {
  std::unique_lock lock(mutex_);
  progress_.wait(lock, [&] { return delivered_ >= number; });
}

}  // namespace imsdk

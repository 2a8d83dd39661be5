#pragma once
// Carries the engine's group changes to its GroupObserver without the
// engine's lock (group_observer.h says when and where). Changes are queued
// under the engine's lock, so the queue holds them in the order they
// happened; one thread at a time delivers them.
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "imsdk/group_observer.h"

namespace imsdk {

struct GroupChange {
  enum class Kind { kCreated, kJoined, kLeft, kRenamed, kOwnerChanged, kDismissed };
  Kind kind = Kind::kCreated;
  std::string group_id;
  std::string text;                  // the name (created, renamed) or the new owner (owner changed)
  std::string owner;                 // created
  std::vector<std::string> members;  // created, joined, left
};

class GroupChangeNotifier {
 public:
  // When it returns, the previous observer is no longer being called
  // (unless it is called from inside that observer).
  void SetObserver(GroupObserver* observer);
  // Under the engine's lock. Returns the change's number.
  uint64_t Queue(GroupChange change);
  // Without the engine's lock: delivers what is queued; waits instead while
  // another thread delivers; inside the observer returns at once (the
  // delivering loop of this thread picks the change up).
  void Flush();
  // Until change `number` has been delivered (the callback thread's hold).
  void WaitDelivered(uint64_t number);

 private:
  struct Numbered {
    uint64_t number;
    GroupChange change;
  };
  void DeliverAllLocked(std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable progress_;
  std::deque<Numbered> queue_;
  uint64_t queued_ = 0;
  uint64_t delivered_ = 0;
  GroupObserver* observer_ = nullptr;
  GroupObserver* calling_ = nullptr;  // the observer being called now
  std::thread::id deliverer_;         // default id: nobody delivers
};

}  // namespace imsdk

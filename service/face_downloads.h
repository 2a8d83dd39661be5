#pragma once
// Pictures for the service's callers (the add-friend dialog, the group
// windows, the host's recent-conversation list) without waiting for the
// network: the cached picture or the default one now, the download on a
// module worker, and 3192 (a heap WString id) to the window that asked once
// it has arrived, so that it can show the picture then.

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/strings.h"
#include "platform/window_messages.h"
#include "service/session.h"

namespace service {

class FaceDownloads {
 public:
  // The picture of `url` in `session`'s face folder when it is there; else
  // `fallback`, and the download is started unless one for the same file
  // runs already. Arrival posts 3192 with `id` to `notify`, and to every
  // other window that asked for the same file meanwhile. An empty URL or no
  // face folder (signed out) gives `fallback` and fetches nothing.
  WString CachedOrFetch(const StampedFolders& session, const WString& url, const WString& fallback,
                        const WString& id, platform::WindowHandle notify);

 private:
  struct Waiter {
    WString id;
    platform::WindowHandle notify;
    bool operator==(const Waiter&) const = default;
  };
  // Shared with the workers, which may outlive this object.
  struct Pending {
    std::mutex mutex;
    std::map<WString, std::vector<Waiter>> waiting;  // by file being fetched
  };
  std::shared_ptr<Pending> pending_ = std::make_shared<Pending>();
};

}  // namespace service

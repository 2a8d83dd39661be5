#include "service/face_downloads.h"

#include <algorithm>

#include "platform/module_workers.h"
#include "service/conversation_faces.h"
#include "service/posting.h"

namespace service {

WString FaceDownloads::CachedOrFetch(const StampedFolders& session, const WString& url,
                                     const WString& fallback, const WString& id,
                                     platform::WindowHandle notify) {
  const WString path = FaceCachePath(session.folders.face, url);
  if (path.empty()) return fallback;
  if (FaceFileExists(path)) return path;
  {
    std::lock_guard lock(pending_->mutex);
    auto [it, first] = pending_->waiting.try_emplace(path);
    const Waiter waiter{id, notify};
    if (std::find(it->second.begin(), it->second.end(), waiter) == it->second.end()) {
      it->second.push_back(waiter);
    }
    if (!first) return fallback;
  }
  const auto takeWaiters = [pending = pending_, path] {
    std::lock_guard lock(pending->mutex);
    std::vector<Waiter> waiters = std::move(pending->waiting[path]);
    pending->waiting.erase(path);
    return waiters;
  };
  const SessionStamp stamp = session.stamp;
  const bool started =
      platform::ModuleWorkers::Instance().Start([url, path, stamp, takeWaiters](std::stop_token) {
        // A failed download keeps the default picture; the next ask tries again.
        const bool arrived = DownloadFace(url, path);
        const std::vector<Waiter> waiters = takeWaiters();
        if (!arrived) return;
        for (const Waiter& waiter : waiters) {
          PostPayload<platform::msg::kConversationLogoChanged>(waiter.notify, stamp, waiter.id);
        }
      });
  if (!started) takeWaiters();
  return fallback;
}

}  // namespace service

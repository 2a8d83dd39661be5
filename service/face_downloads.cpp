#include "service/face_downloads.h"

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
    if (!pending_->paths.insert(path).second) return fallback;
  }
  const auto done = [pending = pending_, path] {
    std::lock_guard lock(pending->mutex);
    pending->paths.erase(path);
  };
  const SessionStamp stamp = session.stamp;
  const bool started = platform::ModuleWorkers::Instance().Start(
      [url, path, id, notify, stamp, done](std::stop_token) {
        // A failed download keeps the default picture; the next ask tries again.
        if (DownloadFace(url, path)) {
          PostPayload<platform::msg::kConversationLogoChanged>(notify, stamp, id);
        }
        done();
      });
  if (!started) done();
  return fallback;
}

}  // namespace service

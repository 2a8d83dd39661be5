#include "service/panes/face_fetcher.h"

#include <memory>

#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/posting.h"

namespace service {

FaceFetcher::FaceFetcher(WindowOf window, void* context) : window_(window), context_(context) {}

FaceFetcher::FaceFetcher(CChatTools& tools)
    : FaceFetcher([](void* t) { return static_cast<CChatTools*>(t)->ChatWindow(); }, &tools) {
  tools_ = &tools;
}

FaceFetcher::~FaceFetcher() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
    queue_.clear();
  }
  wake_.notify_all();
  if (worker_.joinable()) worker_.join();
}

void FaceFetcher::Fetch(const WString& url, const WString& path, const WString& convId,
                        SessionStamp session) {
  {
    std::lock_guard lock(mutex_);
    if (stop_ || !pending_.insert(path).second) return;
    queue_.push_back(Job{url, path, convId, session});
    if (!worker_.joinable()) worker_ = std::thread([this] { Run(); });
  }
  wake_.notify_one();
}

WString FaceFetcher::CachedOrQueued(const WString& url, const WString& fallback,
                                    const WString& convId) {
  if (tools_ == nullptr) return fallback;
  // One session's folder and stamp, read together.
  StampedFolders session = tools_->CurrentFolders();
  WString path = FaceCachePath(session.folders.face, url);
  if (path.empty()) return fallback;
  if (FaceFileExists(path)) return path;
  Fetch(url, path, convId, session.stamp);
  return fallback;
}

void FaceFetcher::WaitIdle() {
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [this] { return pending_.empty() || stop_; });
}

void FaceFetcher::Run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return stop_ || !queue_.empty(); });
    if (stop_) return;
    Job job = std::move(queue_.front());
    queue_.pop_front();
    lock.unlock();
    // A picture already there was announced by the job that fetched it; a
    // failed download keeps the default picture (the next rebuild asks again).
    if (!FaceFileExists(job.path) && DownloadFace(job.url, job.path)) {
      PostPayload<platform::msg::kConversationLogoChanged>(window_(context_), job.session,
                                                           job.convId);
    }
    lock.lock();
    pending_.erase(job.path);
    if (pending_.empty()) idle_.notify_all();
  }
}

}  // namespace service

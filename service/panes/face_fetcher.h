#pragma once
// Fetches conversation pictures on a thread of its own, one at a time, and
// tells the chat window which conversation's picture has arrived (3192 with
// a heap WString id), so that no list ever waits for the network.

#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <thread>

#include "platform/strings.h"
#include "platform/window_messages.h"
#include "service/window_payloads.h"

class CChatTools;

namespace service {

class FaceFetcher {
 public:
  // `window` is asked for when a picture has arrived (the chat window may be
  // created after this object).
  using WindowOf = platform::WindowHandle (*)(void* context);
  FaceFetcher(WindowOf window, void* context);
  // Arrivals go to the chat window of `tools`.
  explicit FaceFetcher(CChatTools& tools);
  // Waits for the fetch in progress; the queued ones are dropped.
  ~FaceFetcher();
  FaceFetcher(const FaceFetcher&) = delete;
  FaceFetcher& operator=(const FaceFetcher&) = delete;

  // Queues the download of `url` into `path` for `convId` of `session`
  // (3192 carries it); a path already queued or being fetched is not queued
  // again.
  void Fetch(const WString& url, const WString& path, const WString& convId, SessionStamp session);
  // The cached picture of `url` in the signed-in user's face folder when it
  // is there; else `fallback` now, and the download is queued for `convId`
  // of the current session (empty URL, no face folder or no CChatTools:
  // `fallback`, nothing queued).
  WString CachedOrQueued(const WString& url, const WString& fallback, const WString& convId);
  // Waits until nothing is queued or being fetched (tests, benchmarks).
  void WaitIdle();

 private:
  struct Job {
    WString url;
    WString path;
    WString convId;
    SessionStamp session = kNoSession;
  };
  void Run();

  WindowOf window_;
  void* context_;
  const CChatTools* tools_ = nullptr;  // where CachedOrQueued looks
  std::mutex mutex_;
  std::condition_variable wake_;
  std::condition_variable idle_;
  std::deque<Job> queue_;
  std::set<WString> pending_;  // paths queued or in progress
  bool busy_ = false;
  bool stop_ = false;
  std::thread worker_;  // started on the first fetch
};

}  // namespace service

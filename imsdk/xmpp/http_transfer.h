#pragma once
// File transfers over HTTP for the server backend: uploads to the slots the
// server's upload service hands out, and downloads that resume an
// interrupted file with a range request. Each transfer runs on its own
// thread so the connection's worker never waits for a network transfer;
// Stop() aborts what runs and joins every thread.
#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace imsdk::xmpp {

struct TransferResult {
  bool ok = false;
  long status = 0;            // the HTTP status, 0 when none came
  std::string error;          // for a trace, when not ok
  uint64_t size = 0;          // bytes of the file now complete (downloads)
  uint64_t resumed_from = 0;  // bytes a download found already there
};

class HttpTransfers {
 public:
  using Progress = std::function<void(uint64_t done, uint64_t total)>;
  using Done = std::function<void(const TransferResult& result)>;

  HttpTransfers() = default;
  ~HttpTransfers() { Stop(); }
  HttpTransfers(const HttpTransfers&) = delete;
  HttpTransfers& operator=(const HttpTransfers&) = delete;

  // PUTs the file at `path` to `url` with `headers` ("Name: value" lines).
  // `progress` and `done` run on the transfer's thread.
  void Put(const std::string& url, std::vector<std::string> headers, const std::string& path,
           Progress progress, Done done);
  // GETs `url` into `path`. The bytes go to `path` + ".part" first; a part
  // left by an interrupted download is resumed with a range request.
  void Get(const std::string& url, const std::string& path, Done done);
  // Aborts running transfers (their `done` reports it) and joins them;
  // later transfers are not started.
  void Stop();

 private:
  void Start(std::function<void(const std::atomic<bool>& stop)> job);
  struct Job {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> finished;
  };
  std::mutex mutex_;
  std::list<Job> jobs_;
  std::atomic<bool> stopping_{false};
};

}  // namespace imsdk::xmpp

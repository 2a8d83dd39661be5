#include "imsdk/xmpp/http_transfer.h"

#include <curl/curl.h>

#include <cstdio>
#include <filesystem>

namespace imsdk::xmpp {
namespace {

void InitialiseCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct Transfer {
  const std::atomic<bool>* stop = nullptr;
  HttpTransfers::Progress progress;
  uint64_t last_reported = UINT64_MAX;
};

int OnProgress(void* data, curl_off_t dltotal, curl_off_t dlnow, curl_off_t ultotal,
               curl_off_t ulnow) {
  auto* t = static_cast<Transfer*>(data);
  if (t->stop->load()) return 1;  // aborts the transfer
  (void)dltotal;
  (void)dlnow;
  if (t->progress && ultotal > 0 && static_cast<uint64_t>(ulnow) != t->last_reported) {
    t->last_reported = static_cast<uint64_t>(ulnow);
    t->progress(static_cast<uint64_t>(ulnow), static_cast<uint64_t>(ultotal));
  }
  return 0;
}

size_t WriteToFile(char* data, size_t size, size_t count, void* file) {
  return std::fwrite(data, size, count, static_cast<FILE*>(file));
}

// The easy handle's common options; no redirects to other schemes, and a
// transfer that stalls for a minute fails.
CURL* NewHandle(const std::string& url, Transfer* transfer, char* error) {
  CURL* curl = curl_easy_init();
  if (curl == nullptr) return nullptr;
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &OnProgress);
  curl_easy_setopt(curl, CURLOPT_XFERINFODATA, transfer);
  curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, error);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 20L);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, 60L);
  return curl;
}

std::string Failure(CURLcode code, const char* error) {
  return *error != '\0' ? error : curl_easy_strerror(code);
}

}  // namespace

void HttpTransfers::Start(std::function<void(const std::atomic<bool>& stop)> job) {
  InitialiseCurlOnce();
  std::lock_guard lock(mutex_);
  if (stopping_) return;  // shutting down: nobody waits for the result
  // Joins the threads that ended since the last transfer.
  for (auto it = jobs_.begin(); it != jobs_.end();) {
    if (it->finished->load()) {
      it->thread.join();
      it = jobs_.erase(it);
    } else {
      ++it;
    }
  }
  auto finished = std::make_shared<std::atomic<bool>>(false);
  jobs_.push_back(Job{std::thread([this, job = std::move(job), finished] {
                        job(stopping_);
                        finished->store(true);
                      }),
                      finished});
}

void HttpTransfers::Stop() {
  std::list<Job> jobs;
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    jobs.swap(jobs_);
  }
  for (auto& job : jobs) job.thread.join();
}

void HttpTransfers::Put(const std::string& url, std::vector<std::string> headers,
                        const std::string& path, Progress progress, Done done) {
  Start([url, headers = std::move(headers), path, progress = std::move(progress),
         done = std::move(done)](const std::atomic<bool>& stop) {
    TransferResult result;
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
      result.error = "cannot read " + path;
      return done(result);
    }
    std::error_code ec;
    const auto size = std::filesystem::file_size(path, ec);
    Transfer transfer{&stop, progress};
    char error[CURL_ERROR_SIZE] = "";
    CURL* curl = NewHandle(url, &transfer, error);
    curl_slist* list = nullptr;
    for (const auto& h : headers) list = curl_slist_append(list, h.c_str());
    CURLcode code = CURLE_FAILED_INIT;
    long status = 0;
    if (curl != nullptr && !ec) {
      curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
      curl_easy_setopt(curl, CURLOPT_READDATA, file);
      curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(size));
      curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
      code = curl_easy_perform(curl);
      curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    }
    result.status = status;
    result.ok = code == CURLE_OK && status >= 200 && status < 300;
    result.size = ec ? 0 : size;
    if (!result.ok) {
      result.error = code != CURLE_OK ? Failure(code, error)
                                      : "the upload service answered " + std::to_string(status);
    }
    curl_slist_free_all(list);
    if (curl != nullptr) curl_easy_cleanup(curl);
    std::fclose(file);
    done(result);
  });
}

void HttpTransfers::Get(const std::string& url, const std::string& path, Done done) {
  Start([url, path, done = std::move(done)](const std::atomic<bool>& stop) {
    TransferResult result;
    const std::string part = path + ".part";
    std::error_code ec;
    uint64_t have = std::filesystem::exists(part, ec) ? std::filesystem::file_size(part, ec) : 0;
    if (ec) have = 0;
    FILE* file = std::fopen(part.c_str(), have > 0 ? "ab" : "wb");
    if (file == nullptr) {
      result.error = "cannot write " + part;
      return done(result);
    }
    Transfer transfer{&stop, nullptr};
    char error[CURL_ERROR_SIZE] = "";
    CURL* curl = NewHandle(url, &transfer, error);
    CURLcode code = CURLE_FAILED_INIT;
    long status = 0;
    if (curl != nullptr) {
      curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &WriteToFile);
      curl_easy_setopt(curl, CURLOPT_WRITEDATA, file);
      if (have > 0)
        curl_easy_setopt(curl, CURLOPT_RESUME_FROM_LARGE, static_cast<curl_off_t>(have));
      code = curl_easy_perform(curl);
      curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
      if (code == CURLE_RANGE_ERROR ||
          (code == CURLE_OK && have > 0 && (status == 200 || status == 416))) {
        // The server sent the whole file, or could not serve the range (the
        // part may be complete or stale): start over.
        std::fclose(file);
        file = std::fopen(part.c_str(), "wb");
        have = 0;
        curl_easy_setopt(curl, CURLOPT_RESUME_FROM_LARGE, static_cast<curl_off_t>(0));
        if (file != nullptr) {
          curl_easy_setopt(curl, CURLOPT_WRITEDATA, file);
          code = curl_easy_perform(curl);
          curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        }
      }
      curl_easy_cleanup(curl);
    }
    if (file != nullptr) std::fclose(file);
    result.resumed_from = have;
    result.status = status;
    result.ok = code == CURLE_OK && (status == 200 || status == 206);
    if (!result.ok) {
      result.error =
          code != CURLE_OK ? Failure(code, error) : "the server answered " + std::to_string(status);
      if (status >= 400) std::filesystem::remove(part, ec);  // nothing to resume
      return done(result);
    }
    std::filesystem::rename(part, path, ec);
    if (ec) {
      result.ok = false;
      result.error = "cannot replace " + path + ": " + ec.message();
      return done(result);
    }
    result.size = std::filesystem::file_size(path, ec);
    done(result);
  });
}

}  // namespace imsdk::xmpp

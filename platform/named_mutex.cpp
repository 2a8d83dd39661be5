#include "platform/named_mutex.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/trace.h"

namespace platform {

// One per object name in this process; every handle of that name shares it.
struct NamedMutex::Core {
  std::mutex mutex;
  std::condition_variable released;
  std::thread::id owner;
  unsigned depth = 0;
  int fd = -1;  // lock file shared with other processes

  ~Core() {
    if (fd >= 0) close(fd);
  }
};

namespace {

std::string EnvOr(const char* name, const char* fallback) {
  const char* value = std::getenv(name);
  return value && *value ? value : fallback;
}

// Made if missing; usable only when it is a real folder (not a link) of this
// user that nobody else may write to. A shared temporary folder is open to
// every local user: one who made the folder first could hold a lock file in
// it forever.
bool IsPrivateFolder(const std::string& folder) {
  mkdir(folder.c_str(), 0700);
  struct stat st {};
  if (lstat(folder.c_str(), &st) != 0) return false;
  return S_ISDIR(st.st_mode) && st.st_uid == geteuid() && (st.st_mode & 077) == 0;
}

// The first private folder of: the session's runtime folder, one named after
// the user in the temporary folder, one in the user's cache folder. Empty
// when none is.
std::string LockFolder() {
  std::vector<std::string> candidates;
  if (const char* run = std::getenv("XDG_RUNTIME_DIR"); run && *run) {
    candidates.push_back(std::string(run) + "/im-named-mutex");
  }
  candidates.push_back(EnvOr("TMPDIR", "/tmp") + "/im-named-mutex-" + std::to_string(geteuid()));
  const std::string cache = EnvOr("XDG_CACHE_HOME", (EnvOr("HOME", "/") + "/.cache").c_str());
  std::error_code ignored;
  std::filesystem::create_directories(cache, ignored);
  candidates.push_back(cache + "/im-named-mutex");
  for (const std::string& folder : candidates) {
    if (IsPrivateFolder(folder)) return folder;
    Trace("NamedMutex: %s is not a private folder of this user, not used", folder.c_str());
  }
  return {};
}

std::string HexName(const std::u16string& units) {
  std::string hex;
  char buf[5];
  for (char16_t u : units) {
    std::snprintf(buf, sizeof buf, "%04x", static_cast<unsigned>(u));
    hex += buf;
  }
  return hex;
}

std::string LockFileFor(const std::u16string& object_name) {
  const std::string folder = LockFolder();
  return folder.empty() ? std::string() : folder + "/" + HexName(object_name);
}

std::shared_ptr<NamedMutex::Core> CoreFor(const std::u16string& object_name) {
  static std::mutex cores_mutex;
  static auto* cores = new std::map<std::u16string, std::weak_ptr<NamedMutex::Core>>;
  std::lock_guard lock(cores_mutex);
  if (auto existing = (*cores)[object_name].lock()) return existing;
  auto core = std::make_shared<NamedMutex::Core>();
  const std::string path = LockFileFor(object_name);
  if (!path.empty()) core->fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (core->fd < 0) Trace("NamedMutex: cannot open %s, mutex is process-local", path.c_str());
  (*cores)[object_name] = core;
  return core;
}

}  // namespace

std::u16string NamedMutex::ObjectNameOf(std::string_view name) {
  std::u16string units;
  for (size_t i = 0; i < name.size(); i += 2) {
    auto lo = static_cast<unsigned char>(name[i]);
    auto hi = i + 1 < name.size() ? static_cast<unsigned char>(name[i + 1]) : 0;
    units.push_back(static_cast<char16_t>(lo | (hi << 8)));
  }
  return units;
}

std::string NamedMutex::LockFileOf(std::string_view name) {
  return LockFileFor(ObjectNameOf(name));
}

std::unique_ptr<NamedMutex> NamedMutex::Create(std::string_view name) {
  std::u16string object_name = ObjectNameOf(name);
  auto core = CoreFor(object_name);
  return std::unique_ptr<NamedMutex>(new NamedMutex(std::move(object_name), std::move(core)));
}

NamedMutex::NamedMutex(std::u16string object_name, std::shared_ptr<Core> core)
    : object_name_(std::move(object_name)), core_(std::move(core)) {}

NamedMutex::~NamedMutex() = default;

void NamedMutex::Wait() {
  ++waits_;
  const auto me = std::this_thread::get_id();
  std::unique_lock lock(core_->mutex);
  if (core_->depth > 0 && core_->owner == me) {
    ++core_->depth;
    return;
  }
  core_->released.wait(lock, [&] { return core_->depth == 0; });
  // Reserve it within the process first, then wait for other processes
  // without holding the in-process lock.
  core_->owner = me;
  core_->depth = 1;
  int fd = core_->fd;
  lock.unlock();
  if (fd >= 0) {
    while (flock(fd, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
}

bool NamedMutex::Release() {
  std::unique_lock lock(core_->mutex);
  if (core_->depth == 0 || core_->owner != std::this_thread::get_id()) return false;
  if (--core_->depth > 0) return true;
  if (core_->fd >= 0) flock(core_->fd, LOCK_UN);
  core_->owner = std::thread::id();
  lock.unlock();
  core_->released.notify_one();
  return true;
}

}  // namespace platform

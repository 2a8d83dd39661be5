#include "ui/rules/busy_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace ui::rules {
namespace {

class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

bool IsReadOnly(const struct stat& st) {
  return (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// flock locks conflict between open file descriptions, also within one
// process; the test lock is dropped again at once.
bool HasFlock(int fd) {
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) return true;
  ::flock(fd, LOCK_UN);
  return false;
}

// Record locks of other processes (POSIX) or other open files (OFD).
bool HasRecordLock(int fd) {
  struct flock probe {};
  probe.l_type = F_WRLCK;
  probe.l_whence = SEEK_SET;
  probe.l_start = 0;
  probe.l_len = 0;  // the whole file
  if (::fcntl(fd, F_OFD_GETLK, &probe) != 0) return false;
  return probe.l_type != F_UNLCK;
}

bool Exists(const std::filesystem::path& p) {
  std::error_code ec;
  return std::filesystem::exists(p, ec);
}

bool HasOfficeLockFile(const std::filesystem::path& file) {
  const std::string name = file.filename().string();
  const std::filesystem::path folder = file.parent_path();
  if (Exists(folder / (".~lock." + name + "#"))) return true;
  if (Exists(folder / ("~$" + name))) return true;
  return name.size() > 2 && Exists(folder / ("~$" + name.substr(2)));
}

}  // namespace

bool IsOpenElsewhere(const std::string& path) {
  if (path.empty()) return true;
  Fd fd(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (fd.get() < 0) return true;
  struct stat st {};
  if (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode) || IsReadOnly(st)) return true;
  if (HasFlock(fd.get()) || HasRecordLock(fd.get())) return true;
  return HasOfficeLockFile(std::filesystem::path(path));
}

}  // namespace ui::rules

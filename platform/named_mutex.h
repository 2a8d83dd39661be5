#pragma once
// Named mutexes shared by every process of one user session, with the
// semantics of the original platform's kernel mutexes: owned by a thread,
// recursive for the owner, waited on without time-out.
//
// Names arrive as 8-bit text and, as on the original platform, are read as
// UTF-16 code units taken from byte pairs (low byte first; an odd length is
// padded with one zero byte): "NewMsgmap" names a five-unit object. On POSIX
// the object is a lock file, named by those units in hex, in the first of
// $XDG_RUNTIME_DIR/im-named-mutex, $TMPDIR/im-named-mutex-<uid> (TMPDIR
// defaults to /tmp) and $XDG_CACHE_HOME/im-named-mutex (~/.cache) that is a
// private folder: a real folder of this user, closed to everyone else.

#include <atomic>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

class NamedMutex {
 public:
  // Creates the mutex or opens the existing one of that name (never owned
  // on return). Never fails: if the lock file cannot be made, the mutex is
  // shared by the threads of this process only, and a trace says so.
  static std::unique_ptr<NamedMutex> Create(std::string_view name);

  ~NamedMutex();
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;

  // Blocks until this thread owns the mutex (again, if it already does).
  void Wait();
  // False when the calling thread does not own the mutex.
  bool Release();

  const std::u16string& ObjectName() const { return object_name_; }
  // How many times Wait was called through this handle.
  unsigned long WaitCount() const { return waits_.load(); }

  // The object name derived from an 8-bit name (see above).
  static std::u16string ObjectNameOf(std::string_view name);
  // The lock file that stands for the object (shared with other processes);
  // empty when no private folder could be had.
  static std::string LockFileOf(std::string_view name);

  struct Core;

 private:
  NamedMutex(std::u16string object_name, std::shared_ptr<Core> core);
  std::u16string object_name_;
  std::shared_ptr<Core> core_;
  std::atomic<unsigned long> waits_{0};
};

}  // namespace platform

#include "platform/named_mutex.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <thread>

using namespace platform;
using namespace std::chrono_literals;

namespace {

TEST(NamedMutexName, BytesAreReadInPairsAsUtf16Units) {
  EXPECT_EQ(NamedMutex::ObjectNameOf("NewMsgmap"),
            (std::u16string{'N' | 'e' << 8, 'w' | 'M' << 8, 's' | 'g' << 8, 'm' | 'a' << 8, 'p'}));
  EXPECT_NE(NamedMutex::ObjectNameOf("A1Mu"), NamedMutex::ObjectNameOf("A2Mu"));
}

TEST(NamedMutex, OwnerMayWaitAgainAndMustReleaseAsOften) {
  auto m = NamedMutex::Create("test-recursive");
  m->Wait();
  m->Wait();
  EXPECT_EQ(m->WaitCount(), 2u);
  EXPECT_TRUE(m->Release());
  EXPECT_TRUE(m->Release());
  EXPECT_FALSE(m->Release());  // not owned any more
}

TEST(NamedMutex, OnlyTheOwnerMayRelease) {
  auto m = NamedMutex::Create("test-owner");
  m->Wait();
  bool released_elsewhere = true;
  std::thread([&] { released_elsewhere = m->Release(); }).join();
  EXPECT_FALSE(released_elsewhere);
  EXPECT_TRUE(m->Release());
}

// Every thread opens its own handle of the one name (TSan sees any overlap).
TEST(NamedMutex, HandlesOfOneNameExcludeEachOtherAcrossThreads) {
  long counter = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      auto mine = NamedMutex::Create("test-counter");
      for (int i = 0; i < 500; ++i) {
        mine->Wait();
        ++counter;
        mine->Release();
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(counter, 2000);
}

TEST(NamedMutex, IsSharedWithOtherProcesses) {
  auto m = NamedMutex::Create("test-cross-process");
  m->Wait();
  pid_t child = fork();
  if (child == 0) {
    // A second process opening the same name must find it taken.
    int fd = open(NamedMutex::LockFileOf("test-cross-process").c_str(), O_RDWR);
    _exit(fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) != 0 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  m->Release();
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

// A lock folder in the shared temporary folder that is not this user's own
// private one is passed over: another user could otherwise hold a lock file
// in it and freeze every process that waits.
TEST(NamedMutex, ForeignTemporaryLockFolderIsNotUsed) {
  namespace fs = std::filesystem;
  const fs::path root = fs::path(testing::TempDir()) / "named-mutex-foreign";
  const fs::path tmp = root / "tmp";
  const fs::path home = root / "home";
  const std::string name = std::to_string(geteuid());
  const fs::path shared = tmp / ("im-named-mutex-" + name);
  unsetenv("XDG_RUNTIME_DIR");
  unsetenv("XDG_CACHE_HOME");
  setenv("TMPDIR", tmp.c_str(), 1);
  const std::string saved_home = std::getenv("HOME") ? std::getenv("HOME") : "";
  setenv("HOME", home.c_str(), 1);
  const struct {
    const char* how;
    std::function<void()> make;
    bool needs_root = false;
  } cases[] = {
      {"open to others",
       [&] {
         fs::create_directories(shared);
         fs::permissions(shared, fs::perms::all);
       }},
      {"a link",
       [&] {
         fs::create_directories(root / "elsewhere");
         fs::permissions(root / "elsewhere", fs::perms::owner_all);
         fs::create_symlink(root / "elsewhere", shared);
       }},
      {"another user's",
       [&] {
         fs::create_directories(shared);
         fs::permissions(shared, fs::perms::owner_all);
         ASSERT_EQ(chown(shared.c_str(), 4321, 4321), 0);
       },
       true},
  };
  int n = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.how);
    if (c.needs_root && geteuid() != 0) continue;  // only root can give a folder away
    fs::remove_all(root);
    fs::create_directories(tmp);
    c.make();
    // The other user holds the lock file the mutex would have used.
    const std::string mutex_name = "foreign-" + std::to_string(n++);
    const fs::path planted =
        shared / NamedMutex::LockFileOf(mutex_name)
                     .substr(NamedMutex::LockFileOf(mutex_name).rfind('/') + 1);
    const int held = open(planted.c_str(), O_RDWR | O_CREAT, 0666);
    ASSERT_GE(held, 0);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    EXPECT_EQ(fs::path(NamedMutex::LockFileOf(mutex_name)).parent_path(),
              home / ".cache" / "im-named-mutex");
    auto mutex = NamedMutex::Create(mutex_name);
    std::atomic<bool> owned{false};
    std::thread waiter([&] {
      mutex->Wait();
      owned = true;
      mutex->Release();
    });
    for (int i = 0; i < 200 && !owned; ++i) std::this_thread::sleep_for(10ms);
    close(held);  // lets a frozen waiter finish either way
    waiter.join();
    EXPECT_TRUE(owned);
  }
  unsetenv("TMPDIR");
  setenv("HOME", saved_home.c_str(), 1);
}

}  // namespace

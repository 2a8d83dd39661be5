#include "platform/named_mutex.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>
#include <atomic>
#include <cstdlib>
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

}  // namespace

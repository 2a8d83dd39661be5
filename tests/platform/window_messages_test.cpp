#include "platform/window_messages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

using namespace platform;
using namespace std::chrono_literals;

namespace {

TEST(PostMessage, ReachesTheQueueInOrder) {
  QueuedWindow window;
  EXPECT_TRUE(IsWindow(window.handle()));
  EXPECT_TRUE(PostMessage(window.handle(), msg::kSdkEvent, 1, 2));
  EXPECT_TRUE(PostMessage(window.handle(), msg::kRecentConversationsChanged, 0, 0));
  std::vector<std::tuple<unsigned, WPARAM, LPARAM>> taken;
  for (const auto& m : window.TakeAll()) taken.emplace_back(m.msg, m.wParam, m.lParam);
  EXPECT_EQ(taken,
            (decltype(taken){{msg::kSdkEvent, 1, 2}, {msg::kRecentConversationsChanged, 0, 0}}));
  EXPECT_FALSE(window.Take());
}

TEST(PostMessage, FailsForNoWindowAndAfterDestroyAndHandlesAreNeverReused) {
  EXPECT_FALSE(PostMessage(WindowHandle::kNone, 1, 0, 0));
  WindowHandle gone = QueuedWindow().handle();
  EXPECT_FALSE(IsWindow(gone));
  EXPECT_FALSE(PostMessage(gone, msg::kSdkEvent, 0, 0));
  QueuedWindow next;
  EXPECT_NE(next.handle(), gone);
}

// A poster on another thread races the window's destruction: every post
// either lands in the queue (and the receiver frees the payload) or fails
// (and the poster still owns it). Nothing leaks, nothing is touched twice.
TEST(PostMessage, DestroyedWindowFromAnotherThreadIsSafe) {
  for (int round = 0; round < 20; ++round) {
    auto window = std::make_unique<QueuedWindow>();
    const WindowHandle handle = window->handle();
    std::atomic<bool> stop{false};
    std::atomic<int> refused{0};
    std::thread poster([&] {
      while (!stop) {
        auto* payload = new int(7);
        if (!PostMessage(handle, msg::kMessageListArrived, reinterpret_cast<WPARAM>(payload), 0)) {
          delete payload;
          ++refused;
          if (refused > 3) return;
        }
      }
    });
    std::this_thread::sleep_for(1ms);
    window->Destroy();
    for (const auto& m : window->TakeAll()) delete reinterpret_cast<int*>(m.wParam);
    poster.join();
    stop = true;
    EXPECT_GT(refused.load(), 0);
    for (const auto& m : window->TakeAll()) delete reinterpret_cast<int*>(m.wParam);
  }
}

TEST(QueuedWindow, WaitForWakesOnPostFromAnotherThread) {
  QueuedWindow window;
  std::thread poster([h = window.handle()] {
    std::this_thread::sleep_for(5ms);
    PostMessage(h, msg::kNetworkStatusChanged, 0, 0);
  });
  auto m = window.WaitFor(5s);
  poster.join();
  ASSERT_TRUE(m);
  EXPECT_EQ(m->msg, 3188u);
  EXPECT_FALSE(window.WaitFor(1ms));
}

}  // namespace

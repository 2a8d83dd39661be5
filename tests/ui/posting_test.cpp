// Posting to windows from other threads, before and after they are gone.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/ui/test_window.h"

namespace ui::test {
namespace {

constexpr unsigned kPayloadMsg = 3024;

// Frees int payloads of kPayloadMsg, counting them.
void FreePayloads(RecordingWindow& w, int& freed) {
  w.onMessage = [&freed](unsigned msg, WPARAM wParam, LPARAM) -> LRESULT {
    if (msg != kPayloadMsg) return 0;
    delete reinterpret_cast<int*>(wParam);
    return ++freed;
  };
}

bool PostPayload(platform::WindowHandle handle) {
  auto* payload = new int(42);
  if (platform::PostMessage(handle, kPayloadMsg, reinterpret_cast<WPARAM>(payload), 0)) return true;
  delete payload;  // a refused post leaves the payload with the sender
  return false;
}

TEST(WindowPosting, MessagesFromAWorkerArriveInOrderOnTheWindowThread) {
  RecordingWindow w("KitTest.xml");
  ASSERT_TRUE(w.Create(nullptr, platform::W("x")));
  const std::thread::id uiThread = std::this_thread::get_id();
  bool allOnUiThread = true;
  w.onMessage = [&](unsigned, WPARAM, LPARAM) -> LRESULT {
    allOnUiThread = allOnUiThread && std::this_thread::get_id() == uiThread;
    return 0;
  };
  std::thread([h = w.GetHWND()] {
    for (unsigned i = 0; i < 200; ++i) platform::PostMessage(h, 3184, i, -static_cast<int>(i));
  }).join();
  ASSERT_TRUE(PumpUntil([&] { return w.messages.size() >= 200; }));
  EXPECT_TRUE(allOnUiThread);
  for (unsigned i = 0; i < 200; ++i) {
    EXPECT_EQ(w.messages[i].msg, 3184u);
    EXPECT_EQ(w.messages[i].wParam, i);
    EXPECT_EQ(w.messages[i].lParam, -static_cast<int>(i));
  }
}

// Workers post heap payloads while windows come and go. Every payload must be
// freed exactly once: by the window when the post was accepted, by the worker
// when it was refused. ASan sees leaks and double frees, TSan the races.
TEST(WindowPosting, WorkersRacingWindowDestructionLoseNothing) {
  std::atomic<platform::WindowHandle> target{platform::WindowHandle::kNone};
  std::atomic<bool> stop{false};
  std::atomic<int> accepted{0};
  std::atomic<int> refused{0};
  int freedByWindows = 0;

  auto work = [&] {
    while (!stop) {
      ++(PostPayload(target.load()) ? accepted : refused);
      std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
  };
  std::thread a(work), b(work);
  for (int round = 0; round < 20; ++round) {
    auto w = std::make_unique<RecordingWindow>("KitItem.xml");
    ASSERT_TRUE(w->Create(nullptr, platform::W("x")));
    FreePayloads(*w, freedByWindows);
    target = w->GetHWND();
    Pump(5);
    if (round % 2 == 0) {
      w->Close(1);  // the orderly way: pending posts are handled first
      ASSERT_TRUE(PumpUntil([&] { return w->finalMessages == 1; }));
    } else {
      Pump(5);
      w->Close(1);
      ASSERT_TRUE(PumpUntil([&] { return !w->IsCreated(); }));
    }
  }
  stop = true;
  a.join();
  b.join();
  EXPECT_GT(accepted.load(), 0);
  EXPECT_GT(refused.load(), 0);
  EXPECT_EQ(freedByWindows, accepted.load());
}

}  // namespace
}  // namespace ui::test

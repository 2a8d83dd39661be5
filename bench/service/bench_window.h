#pragma once
// A chat window for benchmarks: it keeps what the service posts in a queue
// and frees it as the real window would.
#include "platform/window_messages.h"
#include "service/chat_tools.h"
#include "service/posting.h"

class BenchWindow final : public service::WindowPort {
 public:
  platform::WindowHandle ChatWindow() const override { return queue.handle(); }
  void ShowMessageBox(service::BoxOwner, const WString&, const WString&) override {}
  bool Confirm(const WString&, const WString&) override { return false; }
  void ResetWindow() override {}
  bool IsWindowVisible() const override { return false; }
  void HideWindow() override {}
  void FlashHostWindowIfMinimised() override {}
  // Frees what the service posted, as the window would.
  void Drain() {
    for (const platform::WindowMessage& m : queue.TakeAll()) {
      service::DropPosted(m.msg, m.wParam, m.lParam);
    }
  }
  platform::QueuedWindow queue;
};

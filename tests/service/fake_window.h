#pragma once
// The window side for tests: records what the service asks of the window and
// queues posted messages in a platform::QueuedWindow that the test pumps.

#include <mutex>
#include <vector>

#include "platform/window_messages.h"
#include "service/window_port.h"

namespace service_test {

struct Box {
  service::BoxOwner owner = service::BoxOwner::kNone;
  WString title;
  WString text;
};

class FakeWindow final : public service::WindowPort {
 public:
  platform::WindowHandle ChatWindow() const override { return queue.handle(); }
  void ShowMessageBox(service::BoxOwner owner, const WString& title, const WString& text) override;
  bool Confirm(const WString& title, const WString& text) override;
  void ResetWindow() override;
  bool IsWindowVisible() const override;
  void HideWindow() override;
  void FlashHostWindowIfMinimised() override;

  void SetVisible(bool visible);
  void SetConfirmAnswer(bool answer);

  std::vector<Box> Boxes() const;
  int Resets() const;
  int Hides() const;
  int Flashes() const;

  platform::QueuedWindow queue;

 private:
  mutable std::mutex mutex_;
  std::vector<Box> boxes_;
  int resets_ = 0;
  int hides_ = 0;
  int flashes_ = 0;
  bool visible_ = false;
  bool confirm_ = true;
};

}  // namespace service_test

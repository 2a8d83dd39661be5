#include "tests/service/fake_window.h"

namespace service_test {

void FakeWindow::ShowMessageBox(service::BoxOwner owner, const WString& title,
                                const WString& text) {
  std::lock_guard lock(mutex_);
  boxes_.push_back({owner, title, text});
}

bool FakeWindow::Confirm(const WString& title, const WString& text) {
  std::lock_guard lock(mutex_);
  boxes_.push_back({service::BoxOwner::kChatWindow, title, text});
  return confirm_;
}

void FakeWindow::ResetWindow() {
  std::lock_guard lock(mutex_);
  ++resets_;
}

bool FakeWindow::IsWindowVisible() const {
  std::lock_guard lock(mutex_);
  return visible_;
}

void FakeWindow::HideWindow() {
  std::lock_guard lock(mutex_);
  ++hides_;
  visible_ = false;
}

void FakeWindow::FlashHostWindowIfMinimised() {
  std::lock_guard lock(mutex_);
  ++flashes_;
}

void FakeWindow::SetVisible(bool visible) {
  std::lock_guard lock(mutex_);
  visible_ = visible;
}

void FakeWindow::SetConfirmAnswer(bool answer) {
  std::lock_guard lock(mutex_);
  confirm_ = answer;
}

std::vector<Box> FakeWindow::Boxes() const {
  std::lock_guard lock(mutex_);
  return boxes_;
}

int FakeWindow::Resets() const {
  std::lock_guard lock(mutex_);
  return resets_;
}

int FakeWindow::Hides() const {
  std::lock_guard lock(mutex_);
  return hides_;
}

int FakeWindow::Flashes() const {
  std::lock_guard lock(mutex_);
  return flashes_;
}

}  // namespace service_test

#pragma once
// The service layer's window port served by the chat window. Work asked for
// on the window's own thread is done at once; asked for from any other
// thread (the SDK's callbacks) it is posted to the window and the caller
// never waits, so a window thread that waits for the SDK cannot deadlock.

#include "service/window_port.h"

class CIMWnd;

namespace ui {

class ChatWindowPort final : public service::WindowPort {
 public:
  explicit ChatWindowPort(CIMWnd& window) : window_(window) {}

  platform::WindowHandle ChatWindow() const override;
  // Another thread's box is shown later, by the window; without a window it
  // is only traced.
  void ShowMessageBox(service::BoxOwner owner, const WString& title, const WString& text) override;
  // A question needs an answer now: from another thread it is traced and
  // answered "no".
  bool Confirm(const WString& title, const WString& text) override;
  void ResetWindow() override;
  bool IsWindowVisible() const override;
  void HideWindow() override;
  void FlashHostWindowIfMinimised() override;

 private:
  // True when the caller may act on the window directly.
  bool Direct() const;

  CIMWnd& window_;
};

}  // namespace ui

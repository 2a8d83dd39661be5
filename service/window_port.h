#pragma once
// What the service layer asks of the chat window. The window layer implements
// it with Qt; tests use a recording fake over a platform::QueuedWindow.
//
// Threads: every operation may be called from the IM SDK's callback thread
// (a failed sign-in and being kicked offline reset, hide and tell the user
// from there). An implementation hands the work to the user-interface thread
// and must not wait there for anything that could itself wait for the
// service layer. The service never calls the port while holding its own
// cache lock.

#include "host/user_prompt.h"
#include "platform/strings.h"
#include "platform/window_messages.h"

namespace service {

// Who owns a message box.
enum class BoxOwner {
  kNone,        // a plain system box without owner
  kChatWindow,  // the chat window
  kHostWindow,  // the host application's main window
};

class WindowPort : public host::UserPrompt {
 public:
  // Where the service posts its custom window messages (kNone before the
  // window exists: every post then fails and its payload is dropped).
  virtual platform::WindowHandle ChatWindow() const = 0;
  // The module's message box with one OK button.
  virtual void ShowMessageBox(BoxOwner owner, const WString& title, const WString& text) = 0;
  // Stop the upload display, clear the lists, empty the composer, forget the
  // current conversation and show the empty page.
  virtual void ResetWindow() = 0;
  virtual bool IsWindowVisible() const = 0;
  virtual void HideWindow() = 0;
  // Flash the host's main window, only when it is minimised.
  virtual void FlashHostWindowIfMinimised() = 0;

  // host::UserPrompt: the host-bridge algorithms' boxes belong to the chat window.
  void ShowMessage(const WString& title, const WString& text) override {
    ShowMessageBox(BoxOwner::kChatWindow, title, text);
  }
};

}  // namespace service

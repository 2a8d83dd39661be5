#pragma once
// How the host-bridge algorithms speak to the user: the module's one message
// box (a title and a text; a question answers with the module-wide
// "confirmed" flag). The window layer implements it.

#include "platform/strings.h"

namespace host {

class UserPrompt {
 public:
  virtual ~UserPrompt() = default;
  virtual void ShowMessage(const WString& title, const WString& text) = 0;
  // Confirm/cancel question; true when the user confirmed.
  virtual bool Confirm(const WString& title, const WString& text) = 0;
};

}  // namespace host

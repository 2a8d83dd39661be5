#pragma once
// The two module-level counters that make start-up and sign-in idempotent,
// the sign-in sequence of the LoginIm export and the internal logout.

#include <atomic>

#include "platform/strings.h"

class CChatTools;

namespace service {

struct ModuleCounters {
  // Times CChatTools::Init has run: raised to 1 by the first sign-in, never lowered.
  std::atomic<int> initialised{0};
  // 1 while a sign-in was accepted and not undone. A logout lowers it without
  // a lower bound (so -1 after a logout without sign-in), and sign-in is
  // refused only while it is 1 or more.
  std::atomic<int> logged_in{0};
};

ModuleCounters& Counters();

// LoginIm after the folders and the window: Init once per process, then the
// sign-in unless one is already accepted. True when the SDK accepted it.
bool SignIn(CChatTools& tools, WString userId, WString userSig);

// Lower the login counter, TIMLogout, reset and hide the window, ClearResource;
// with `leaveSharedSession` (LogOutIm, kicked offline) also leave and end the
// host's shared session. Safe on the SDK's callback thread.
void InternalLogout(CChatTools& tools, bool leaveSharedSession);

}  // namespace service

#pragma once
// SDK results that name their request only by a number (a send's local id, a
// download's request key) reach the service object through this. The module
// has one service object; whichever made the last such request gets the
// results, and it clears the pointer when it goes.

#include <atomic>

class CChatTools;

namespace service {

std::atomic<CChatTools*>& IdCallbackOwner();

}  // namespace service

#pragma once
// The send result names its message only by local id; the callbacks reach the
// service object through this (the module has one service object; the last
// one that sent is the one that gets the results).

#include <atomic>

class CChatTools;

namespace service {

std::atomic<CChatTools*>& SendOwner();

}  // namespace service

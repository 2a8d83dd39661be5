#pragma once
// A window of the host application, known to the module only by its native
// id (the parent handed to g_CreateWindow). The id is looked up each time
// rather than cast, so a stale or foreign id simply finds no window, and
// everything below then does nothing (or reports none).

#include <optional>

#include "ui/kit/control.h"

namespace ui {

struct HostWindow {
  void* nativeId = nullptr;
};

// The host window's frame in screen coordinates; none when it is not found.
std::optional<Rect> HostWindowFrame(HostWindow window);
// Asks for the user's attention on the host window when it is minimised.
void FlashHostWindowIfMinimised(HostWindow window);

}  // namespace ui

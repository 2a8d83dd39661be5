#pragma once
// The chat module's exported entry points, as a host declares them. The
// library exports exactly these eight names, unmangled; a host resolves them
// by name (dlsym) after loading the library. Call every one of them on the
// host's user-interface thread (the thread that runs its QApplication).

#include <cstdint>

#include "platform/strings.h"

// A rectangle in screen coordinates.
struct ImRect {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};

extern "C" {
// `parent`: the host's main window as a native window id (QWidget::winId()
// cast to a pointer), or null. `instance` is not used. 1 when the window was
// created, 0 when it existed already (or could not be built).
int g_CreateWindow(void* instance, void* parent);
// True when the IM SDK accepted the sign-in request.
bool LoginIm(WString userId, WString userSig);
void LogOutIm();
// The two integers are not read. 1 when the window exists.
int DisplayIm(intptr_t ignored1, intptr_t ignored2, const ImRect* rect);
int MoveIm(const ImRect* rect);
int HideIm();
int EntryShareChatIm();
int ExitShareChatIm();
}

namespace im_exports {
using CreateWindowFn = int (*)(void*, void*);
using LoginImFn = bool (*)(WString, WString);
using LogOutImFn = void (*)();
using DisplayImFn = int (*)(intptr_t, intptr_t, const ImRect*);
using MoveImFn = int (*)(const ImRect*);
using HideImFn = int (*)();
using EntryShareChatImFn = int (*)();
using ExitShareChatImFn = int (*)();
}  // namespace im_exports

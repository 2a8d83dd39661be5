#pragma once
// The system's folder browser, as window code asks for it.

#include <functional>

#include "platform/strings.h"

namespace ui {

// Asks the user for a folder (no owner, no title, default options). Empty
// when the user cancelled.
WString BrowseForFolder();

// The browser a window uses; tests substitute their own.
using FolderBrowser = std::function<WString()>;

}  // namespace ui

#pragma once
// The system's open-file dialog: one existing file, the current folder left
// as it is.

#include "platform/strings.h"

namespace ui {

class WindowImplBase;

// `filterText` is shown as it stands ("图像文件(*.bmp;*.jpg)"); `patterns`
// are separated by ';' ("*.bmp;*.jpg"). Empty when the user cancels.
WString ChooseOpenFile(WindowImplBase* owner, const WString& filterText, const WString& patterns);

}  // namespace ui

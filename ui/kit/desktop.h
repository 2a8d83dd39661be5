#pragma once
// What the desktop does with files: open one with its default application,
// show one selected in its folder. An interface so that window code can be
// tested without starting applications.

#include "platform/strings.h"

namespace ui {

class Desktop {
 public:
  virtual ~Desktop() = default;
  // False when the file does not exist or nothing could open it.
  virtual bool OpenFile(const WString& path) = 0;
  // The file manager's "show item" (org.freedesktop.FileManager1), else its
  // folder opened; false when the file does not exist.
  virtual bool ShowInFolder(const WString& path) = 0;
};

Desktop& SystemDesktop();

}  // namespace ui

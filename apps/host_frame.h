#pragma once
// The demo's stand-in for the drawing application: a main window with a
// placeholder drawing on the left; the chat window is placed on its right.

#include <QMainWindow>

namespace demo {

class HostFrame : public QMainWindow {
 public:
  HostFrame();
  // Native window id as the module takes its parent.
  void* NativeHandle();

 protected:
  // Closing the drawing application ends the demo.
  void closeEvent(QCloseEvent* event) override;
};

}  // namespace demo

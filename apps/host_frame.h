#pragma once
// The demo's stand-in for the drawing application: a main window with a
// placeholder drawing on the left; the chat window is placed on its right.
// While the host is in a shared chat on a drawing, a panel over the drawing
// shows the shared drawing, who is in the session and the drawing-sync
// changes as they arrive, with a button to leave the session.

#include <QMainWindow>

#include <functional>

namespace host::local {
class LocalHost;
}
class QLabel;
class QPushButton;
class QWidget;

namespace demo {

class HostFrame : public QMainWindow {
 public:
  explicit HostFrame(host::local::LocalHost& host);
  // Native window id as the module takes its parent.
  void* NativeHandle();
  // What "离开共享聊图" does (leave at the host, then tell the module).
  void SetLeaveAction(std::function<void()> leave) { leave_ = std::move(leave); }
  // Reads the host's session now (the panel also follows it by itself).
  void RefreshSession();

 protected:
  // Closing the drawing application ends the demo.
  void closeEvent(QCloseEvent* event) override;

 private:
  host::local::LocalHost& host_;
  std::function<void()> leave_;
  QWidget* sessionPanel_ = nullptr;
  QLabel* sessionText_ = nullptr;
  QPushButton* leaveButton_ = nullptr;
};

}  // namespace demo

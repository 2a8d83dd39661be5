#pragma once
// The toolkit window behind a WindowImplBase: holds the loaded skin, turns
// toolkit signals and events into notifications and window messages, and
// receives posted messages through a mailbox that any thread may fill.

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>

#include <QDialog>

#include "platform/window_messages.h"
#include "ui/kit/qt/frame_drag.h"
#include "ui/kit/window_impl_base.h"

class QDropEvent;
class QSocketNotifier;
class QTimer;

namespace ui {

class WindowHost : public QDialog {
  Q_OBJECT
 public:
  WindowHost(WindowImplBase* window, QWidget* ownerHost, WindowStyle style);
  ~WindowHost() override;

  bool Attach(QWidget* root);  // the loaded skin
  QWidget* root() const { return root_; }
  QWidget* orphanage() const { return orphanage_; }
  platform::WindowHandle handle() const { return handle_; }
  // Connects every widget under `root` to the window's Notify.
  void Wire(QWidget* root);

  void SetAcceptFiles(bool accept);

  void SetTimer(unsigned id, unsigned milliseconds);
  void KillTimer(unsigned id);
  bool IsTimerPending(unsigned id) const;

  // Stops posting, kills timers and hands messages already accepted to the
  // window, so that their payloads are freed by the window code.
  void Shutdown();
  // Cuts the link to the window object; the host is then only waiting to be deleted.
  void Detach() { window_ = nullptr; }
  bool detached() const { return window_ == nullptr; }
  bool busy() const { return busy_ > 0; }
  bool shuttingDown() const { return shuttingDown_; }

  qt::FrameDrag& frameDrag() { return frameDrag_; }

  void SendNotify(QWidget* sender, std::string_view type, QPoint windowPos = {},
                  platform::WPARAM wParam = 0, platform::LPARAM lParam = 0);

 public slots:
  void reject() override;

 protected:
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // Filled by any thread. A poster never calls the toolkit: it rings an
  // eventfd that the window thread watches, so the only lock shared with
  // other threads is the mailbox's own.
  struct Mailbox {
    Mailbox();
    ~Mailbox();
    void Ring() const;
    void Silence() const;

    std::mutex mutex;
    std::deque<platform::WindowMessage> queue;
    bool wakePending = false;
    int wakeFd = -1;
  };
  class BusyScope;

  void Drain(bool everything = false);
  LRESULT Deliver(unsigned msg, platform::WPARAM wParam, platform::LPARAM lParam);
  bool FilterInput(QWidget* widget, QEvent* event);
  // A drag carrying local files: taken (and, when dropped, delivered as
  // kWmDropFiles) while the window accepts files. False for other drags.
  bool TakeFileDrag(QWidget* target, QDropEvent* event);

  WindowImplBase* window_;
  QWidget* root_ = nullptr;
  QWidget* orphanage_;
  std::shared_ptr<Mailbox> mailbox_;
  QSocketNotifier* wakeNotifier_ = nullptr;
  platform::WindowHandle handle_ = platform::WindowHandle::kNone;
  std::map<unsigned, QTimer*> timers_;
  qt::FrameDrag frameDrag_{this};
  int busy_ = 0;
  bool shuttingDown_ = false;
  bool acceptFiles_ = false;
};

}  // namespace ui

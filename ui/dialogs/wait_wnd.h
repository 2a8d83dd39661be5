#pragma once
// CWaitWnd: the small "please wait" window a dialog shows while work it
// started (an upload) runs elsewhere. The skin carries the animation.
//
// The opener keeps the pointer Open returns and closes the window when the
// work reports back; the object then deletes itself, so the opener forgets
// the pointer once it has called Close.

#include "ui/dialogs/dialog_frame.h"

class CWaitWnd final : public ui::DialogFrame {
 public:
  // Shown with activation, centred on `owner`. Null when the window could not
  // be made.
  static CWaitWnd* Open(ui::WindowImplBase* owner);

 protected:
  void Notify(ui::TNotifyUI& msg) override;

 private:
  CWaitWnd();
  ~CWaitWnd() override = default;
};

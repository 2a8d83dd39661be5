#pragma once
// The module's one message box: a title, a text, a confirm button and, for
// questions, a cancel button. Constructing it shows it modally and returns
// when it is closed; the answer is the module-wide "confirmed" flag, which
// every box overwrites, so read it before showing another.

#include "platform/strings.h"
#include "ui/dialogs/dialog_frame.h"

class CChatMessageBox final : public ui::DialogFrame {
 public:
  enum Mode : unsigned char { kNotice = 0, kQuestion = 1 };

  // `mode` 1: confirm and cancel; 0: confirm only. `owner` may be null.
  CChatMessageBox(const WString& title, const WString& message, ui::WindowImplBase* owner,
                  unsigned char mode);
  // Owned by a window of the host application (the failed sign-in's box
  // belongs to the host's main window).
  CChatMessageBox(const WString& title, const WString& message, ui::HostWindow owner,
                  unsigned char mode);
  ~CChatMessageBox() override;

  // True only when the last box was answered with its confirm button.
  static bool Confirmed();

 protected:
  void Notify(ui::TNotifyUI& msg) override;

 private:
  template <typename Owner>
  void Run(Owner owner);
  void OnWindowInit();

  WString title_;
  WString message_;
  bool showConfirm_ = true;
  bool showCancel_;
  // Posting kMessageBoxAnswered to the owner on confirm. Kept off: the box is
  // modal, so callers read the flag instead.
  bool notifyOwner_ = false;

  ui::Control closeBtn_;
  ui::Control titleLabel_;
  ui::Control messageLabel_;
  ui::Control confirmBtn_;
  ui::Control cancelBtn_;
};

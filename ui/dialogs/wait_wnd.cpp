#include "ui/dialogs/wait_wnd.h"

#include "ui/dialogs/dialog_rows.h"

CWaitWnd::CWaitWnd() : DialogFrame(ui::dialogs::kWaitWnd) {}

CWaitWnd* CWaitWnd::Open(ui::WindowImplBase* owner) {
  auto* wait = new CWaitWnd();
  return wait->ShowDialog(owner) ? wait : nullptr;  // a failed one has deleted itself
}

void CWaitWnd::Notify(ui::TNotifyUI&) {
  // Nothing to look up or answer: the skin animates itself.
}

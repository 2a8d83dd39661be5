#include "ui/dialogs/chat_message_box.h"

#include <atomic>

#include "platform/trace.h"
#include "platform/window_messages.h"
#include "ui/dialogs/dialog_rows.h"

namespace {

std::atomic<bool> g_confirmed{false};

}  // namespace

template <typename Owner>
void CChatMessageBox::Run(Owner owner) {
  g_confirmed = false;
  if (RunModal(owner) < 0) {
    platform::Trace("CChatMessageBox: not shown, title %s", platform::Utf16ToUtf8(title_).c_str());
  }
}

CChatMessageBox::CChatMessageBox(const WString& title, const WString& message,
                                 ui::WindowImplBase* owner, unsigned char mode)
    : DialogFrame(ui::dialogs::kChatMessageBox),
      title_(title),
      message_(message),
      showCancel_(mode == kQuestion) {
  Run(owner);
}

CChatMessageBox::CChatMessageBox(const WString& title, const WString& message, ui::HostWindow owner,
                                 unsigned char mode)
    : DialogFrame(ui::dialogs::kChatMessageBox),
      title_(title),
      message_(message),
      showCancel_(mode == kQuestion) {
  Run(owner);
}

CChatMessageBox::~CChatMessageBox() = default;

bool CChatMessageBox::Confirmed() {
  return g_confirmed;
}

void CChatMessageBox::OnWindowInit() {
  closeBtn_ = FindControl("ChatMessagebox_closebtn");
  titleLabel_ = FindControl("ChatMessagebox_Title");
  messageLabel_ = FindControl("ChatMessagebox_Msg");
  confirmBtn_ = FindControl("ChatMessagebox_ConfirmBtn");
  cancelBtn_ = FindControl("ChatMessagebox_CancelBtn");
  titleLabel_.SetText(title_);
  messageLabel_.SetText(message_);
  if (!showConfirm_) confirmBtn_.SetVisible(false);
  if (!showCancel_) cancelBtn_.SetVisible(false);
}

void CChatMessageBox::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyWindowInit) {
    OnWindowInit();
    return;
  }
  if (msg.sType != ui::kNotifyClick) return;
  const std::string name = msg.pSender.GetName();
  if (name == "ChatMessagebox_ConfirmBtn") {
    g_confirmed = true;
    if (notifyOwner_ && GetOwner()) {
      platform::PostMessage(GetOwner()->GetHWND(), platform::msg::kMessageBoxAnswered, 0, 0);
    }
    Close(1);
  } else if (name == "ChatMessagebox_CancelBtn" || name == "ChatMessagebox_closebtn") {
    Close(1);
  }
}

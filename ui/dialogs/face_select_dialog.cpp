#include "ui/dialogs/face_select_dialog.h"

#include "platform/trace.h"
#include "platform/window_messages.h"
#include "ui/kit/resources.h"
#include "ui/rules/emoticon_table.h"

CFaceSelectDialog::~CFaceSelectDialog() = default;

bool CFaceSelectDialog::Open(ui::WindowImplBase& owner, ui::Point bottomLeft) {
  if (!Create(&owner, u"CFaceSelectDialog", ui::WindowStyle::kPopupTool)) {
    platform::Trace("CFaceSelectDialog: window not created");
    return false;
  }
  ui::Rect own = GetWindowRect();
  MoveWindow(ui::Rect{bottomLeft.x, bottomLeft.y - own.Height(), bottomLeft.x + own.Width(),
                      bottomLeft.y});
  ShowWindow(true, true);
  return true;
}

void CFaceSelectDialog::ClearChoice() {
  path_.clear();
  code_.clear();
  index_ = -1;
}

void CFaceSelectDialog::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyWindowInit) {
    ui::rules::EmoticonTable();  // built here at the latest
  } else if (msg.sType == ui::kNotifyClick) {
    Choose(msg.pSender.GetName());
  }
}

void CFaceSelectDialog::Choose(const std::string& cellName) {
  WString imageName = platform::W(cellName);
  const ui::rules::Emoticon* emoticon = ui::rules::FindByImageName(imageName);
  if (emoticon == nullptr) return;  // not an emoticon cell
  path_ = platform::W(ui::ResourcePath("DuiLibRes\\emoji\\")) + u"/" + imageName + u".png";
  code_ = emoticon->code;
  index_ = emoticon->index;
  if (GetOwner() != nullptr) {
    platform::PostMessage(GetOwner()->GetHWND(), platform::msg::kEmoticonChosen, 0, 0);
  }
  Close(1);
}

ui::LRESULT CFaceSelectDialog::OnKillFocus(unsigned, ui::WPARAM, ui::LPARAM, bool& bHandled) {
  // A click anywhere else puts the picker away, as a popup does.
  Close(1);
  bHandled = true;
  return 0;
}

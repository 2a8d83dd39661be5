#include "ui/dialogs/member_picker.h"

#include "platform/trace.h"

namespace ui {

MemberPicker::MemberPicker(const DialogRow& row, std::string prefix, service::GroupSource& source,
                           PersonPicker::Mode mode)
    : DialogFrame(row), source_(source), prefix_(std::move(prefix)), mode_(mode) {}

void MemberPicker::Notify(TNotifyUI& msg) {
  if (msg.sType == kNotifyWindowInit) {
    picker_.SetUp(Named("List"), mode_);
    if (!Offer()) {
      platform::Trace("%s: nothing to pick from, closed", Row().className);
      Close(0);
      return;
    }
    ShowCount();
    return;
  }
  if (picker_.OnNotify(msg) != nullptr) {
    ShowCount();
    return;
  }
  if (msg.sType == kNotifyClick) {
    const std::string name = msg.pSender.GetName();
    if (name == prefix_ + "_ConfirmBtn") {
      Confirm();
    } else if (name == prefix_ + "_CancelBtn" || name == prefix_ + "_closebtn") {
      Close(0);
    }
  }
  DialogFrame::Notify(msg);
}

void MemberPicker::ShowCount() {
  const size_t count = picker_.ChosenCount();
  Named("Count").SetText(platform::Utf8ToUtf16("已选择 " + std::to_string(count) + " 人"));
  Named("ConfirmBtn").SetEnabled(count > 0);
}

void MemberPicker::Confirm() {
  std::vector<service::GroupPerson> chosen = picker_.Chosen();
  if (chosen.empty() || !Act(chosen)) return;
  succeeded_ = true;
  Close(1);
}

}  // namespace ui

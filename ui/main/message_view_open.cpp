// Opening what a message holds, on a double-click on its item.

#include "host/user_prompt.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/main/message_view.h"

namespace ui::main {
namespace {

uint64_t ItemIdOf(const Control& richEdit) {
  WString text = richEdit.GetUserData();
  uint64_t id = 0;
  for (char16_t c : text) {
    const uint64_t digit = static_cast<uint64_t>(c - u'0');
    if (c < u'0' || c > u'9' || id > (UINT64_MAX - digit) / 10) return 0;
    id = id * 10 + digit;
  }
  return id;
}

}  // namespace

// Opening asks nothing: questions are not expected, and are answered no.
class MessageView::ViewPrompt final : public host::UserPrompt {
 public:
  explicit ViewPrompt(MessageView& view) : view_(view) {}
  void ShowMessage(const WString& title, const WString& text) override {
    view_.ShowBox(title, text);
  }
  bool Confirm(const WString&, const WString&) override { return false; }

 private:
  MessageView& view_;
};

void MessageView::OpenAttachment(const Control& richEdit) {
  const uint64_t itemId = ItemIdOf(richEdit);
  ShownMessage* shown = itemId == 0 ? nullptr : messages_.FindItem(itemId);
  if (!shown || shown->message.elems.empty()) return;
  const ElemStru& elem = shown->message.elems.front();
  const ShownElem& view = shown->elems.front();
  switch (elem.elem_type) {
    case kElemImage:
      if (view.transfer == TransferState::kDone) desktop_.OpenFile(view.localPath);
      break;
    case kElemCustom:
      if (IsDrawingElem(elem)) OpenDrawing(*shown);
      break;
    case kElemFile:
      if (view.own || view.transfer == TransferState::kDone) desktop_.ShowInFolder(view.localPath);
      break;
    case kElemVideo:
      if (view.transfer == TransferState::kDone) desktop_.OpenFile(view.localPath);
      break;
    default:
      break;
  }
}

// The drawing opens through the host; a copy fetched now shows as
// downloaded.
void MessageView::OpenDrawing(ShownMessage& shown) {
  ViewPrompt prompt(*this);
  source_.OpenDrawing(shown.message, prompt);
  const int row = list_.Find(shown.itemId);
  if (row < 0) return;
  for (size_t i = 0; i < shown.message.elems.size(); ++i) {
    if (IsDrawingElem(shown.message.elems[i])) Render(row, shown, i);
  }
}

void MessageView::ShowBox(const WString& title, const WString& text) {
  if (showBox_) {
    showBox_(title, text);
  } else {
    CChatMessageBox(title, text, &window_, CChatMessageBox::kNotice);
  }
}

}  // namespace ui::main

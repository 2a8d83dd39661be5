// Opening what a message holds, on a double-click on its item.

#include "platform/trace.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/main/message_view.h"

namespace ui::main {
namespace {

uint32_t ItemIdOf(const Control& richEdit) {
  WString text = richEdit.GetUserData();
  uint64_t id = 0;
  for (char16_t c : text) {
    if (c < u'0' || c > u'9' || id > UINT32_MAX) return 0;
    id = id * 10 + static_cast<uint64_t>(c - u'0');
  }
  return id > UINT32_MAX ? 0 : static_cast<uint32_t>(id);
}

}  // namespace

void MessageView::OpenAttachment(const Control& richEdit) {
  uint32_t itemId = ItemIdOf(richEdit);
  ShownMessage* shown = itemId == 0 ? nullptr : messages_.FindItem(itemId);
  if (!shown || shown->message.elems.empty()) return;
  const ElemStru& elem = shown->message.elems.front();
  const ShownElem& view = shown->elems.front();
  switch (elem.elem_type) {
    case kElemImage:
      if (view.transfer == TransferState::kDone) desktop_.OpenFile(view.localPath);
      break;
    case kElemCustom:
      if (elem.drawing.subType == kCustomDrawing) OpenDrawing(elem);
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

void MessageView::OpenDrawing(const ElemStru& elem) {
  if (!source_.HasDrawingService()) return;
  const DrawingMsgStru& drawing = elem.drawing;
  WString ref =
      drawing.fileRefId.empty() ? platform::W(std::to_string(drawing.fileId)) : drawing.fileRefId;
  switch (source_.CheckDrawing(ref)) {
    case service::MessageViewSource::DrawingCheck::kGone:
      ShowBox(u"错误", u"图纸不存在或已被删除!");
      return;
    case service::MessageViewSource::DrawingCheck::kFailed:
      platform::Trace("OpenDrawing: the host could not check drawing %d", drawing.fileId);
      return;
    case service::MessageViewSource::DrawingCheck::kExists:
      break;
  }
  if (source_.IsSharedChatActive()) return;
  if (!source_.OpenDrawingFile(drawing.filePath)) ShowBox(u"打开图纸", u"打开图纸失败!!!");
}

void MessageView::ShowBox(const WString& title, const WString& text) {
  if (showBox_) {
    showBox_(title, text);
  } else {
    CChatMessageBox(title, text, &window_, CChatMessageBox::kNotice);
  }
}

}  // namespace ui::main

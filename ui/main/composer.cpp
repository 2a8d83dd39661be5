#include "ui/main/composer.h"

#include "platform/trace.h"
#include "service/panes/composer_sink.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/dialogs/face_select_dialog.h"
#include "ui/kit/file_dialog.h"
#include "ui/kit/window_impl_base.h"
#include "ui/rules/emoticon_table.h"
#include "ui/rules/outgoing.h"

namespace rules = ui::rules;

namespace {

Composer::Prompts DefaultPrompts(ui::WindowImplBase& window) {
  return {
      [&window](const rules::FileFilter& filter) {
        return ui::ChooseOpenFile(&window, filter.text, filter.patterns);
      },
      [&window](const rules::Refusal& refusal) {
        CChatMessageBox(refusal.title, refusal.text, &window, CChatMessageBox::kNotice);
      },
  };
}

std::vector<rules::Outgoing> AsOutgoing(const std::vector<ui::RichPiece>& pieces) {
  std::vector<rules::Outgoing> out;
  out.reserve(pieces.size());
  for (const ui::RichPiece& piece : pieces) {
    out.push_back(
        {piece.kind == ui::RichPiece::kPicture ? rules::Outgoing::kPicture : rules::Outgoing::kText,
         piece.value});
  }
  return out;
}

}  // namespace

Composer::Composer(ui::WindowImplBase& window, const ui::Control& edit, service::ComposerSink& sink)
    : Composer(window, edit, sink, DefaultPrompts(window)) {}

Composer::Composer(ui::WindowImplBase& window, const ui::Control& edit, service::ComposerSink& sink,
                   Prompts prompts)
    : ComposerRoutes(edit),
      window_(window),
      sink_(sink),
      prompts_(std::move(prompts)),
      edit_(edit) {
  edit_.SetPasteFolder(sink_.PastedPictureFolder());
}

Composer::~Composer() = default;

void Composer::Send() {
  if (!edit_) return;
  std::vector<rules::Outgoing> items = rules::PrepareOutgoing(AsOutgoing(edit_.GetContent()));
  if (items.empty()) return;  // spaces only: the composer keeps them
  if (auto refusal = rules::CheckOutgoing(items)) {
    prompts_.notice(*refusal);  // nothing sent, the composer keeps its content
    return;
  }
  bool sentAny = false;
  for (const rules::Outgoing& item : items) {
    bool sent = item.kind == rules::Outgoing::kText ? sink_.SendText(item.value)
                                                    : sink_.SendImage(item.value);
    sentAny = sentAny || sent;
  }
  if (sentAny) edit_.EmptyEdit();
  Focus();
}

void Composer::OpenEmoticons() {
  if (picker_ && picker_->IsCreated()) picker_->Close(1);
  picker_ = std::make_unique<CFaceSelectDialog>();
  ui::Rect window = window_.GetWindowRect();
  ui::Rect at = window_.FindControl("IMWnd_EmoticonsBtn").GetPos();
  picker_->Open(window_, ui::Point{window.left + at.left, window.top + at.top});
}

ui::LRESULT Composer::InsertEmoticon(ui::WPARAM, ui::LPARAM) {
  if (!picker_ || !picker_->HasChoice()) return 0;
  const rules::Emoticon* emoticon = rules::FindByCode(picker_->ChosenCode());
  // No composer: the choice is dropped without a word.
  if (edit_ && emoticon != nullptr) edit_.InsertImage(picker_->ChosenPath(), emoticon->pickerCode);
  picker_->ClearChoice();
  Focus();
  return 0;
}

void Composer::SendPictures() {
  Upload(rules::AttachmentKind::kPicture);
}

void Composer::SendFiles() {
  Upload(rules::AttachmentKind::kFile);
}

void Composer::Upload(rules::AttachmentKind kind) {
  WString path = prompts_.chooseFile(rules::FilterFor(kind));
  if (!path.empty()) SendAttachment(kind, path);
  Focus();
}

void Composer::DropFiles(const std::vector<WString>& paths) {
  for (const WString& path : paths) {
    SendAttachment(
        rules::IsPictureFile(path) ? rules::AttachmentKind::kPicture : rules::AttachmentKind::kFile,
        path);
  }
  Focus();
}

void Composer::SendAttachment(rules::AttachmentKind kind, const WString& path) {
  rules::Verdict verdict = rules::CheckAttachment(kind, path);
  if (auto refusal = rules::RefusalFor(kind, verdict)) {
    prompts_.notice(*refusal);
    return;
  }
  if (kind == rules::AttachmentKind::kPicture) {
    sink_.SendImage(path);
  } else {
    sink_.SendFile(path);
  }
}

void Composer::PasteKey() {
  edit_.PasteSpecial();
}

void Composer::Paste() {
  edit_.PasteSpecial();
}

void Composer::Cut() {
  edit_.Cut();
}

void Composer::Clear() {
  edit_.EmptyEdit();
}

void Composer::Focus() {
  composer_.SetFocus();
}

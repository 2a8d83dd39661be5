#include "ui/kit/rich_edit.h"

#include <QApplication>
#include <QClipboard>

#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/im_rich_edit.h"

namespace ui {
namespace {

QString ToQ(const WString& s) {
  return QString::fromUtf16(s.data(), static_cast<qsizetype>(s.size()));
}

qt::ImRichEdit* EditOf(const Control& control) {
  return qobject_cast<qt::ImRichEdit*>(qt::WidgetOf(control));
}

}  // namespace

RichEdit::RichEdit(const Control& control) {
  if (EditOf(control) != nullptr) control_ = control;
}

RichEdit::operator bool() const {
  return EditOf(control_) != nullptr;
}

bool RichEdit::InsertImage(const WString& path, const WString& objectText) {
  qt::ImRichEdit* edit = EditOf(control_);
  return edit != nullptr && edit->insertImageFile(ToQ(path), ToQ(objectText));
}

std::vector<RichPiece> RichEdit::GetContent() const {
  qt::ImRichEdit* edit = EditOf(control_);
  return edit ? qt::ImRichEdit::contentOf(*edit->document()) : std::vector<RichPiece>{};
}

void RichEdit::EmptyEdit() {
  if (qt::ImRichEdit* edit = EditOf(control_)) {
    QSignalBlocker quiet(edit);  // only the user's typing is a "textchanged"
    edit->clear();
  }
}

void RichEdit::Cut() {
  if (qt::ImRichEdit* edit = EditOf(control_)) edit->cut();
}

void RichEdit::PasteSpecial() {
  if (qt::ImRichEdit* edit = EditOf(control_))
    edit->pasteFiltered(QApplication::clipboard()->mimeData());
}

void RichEdit::SetPasteFolder(const WString& folder) {
  if (qt::ImRichEdit* edit = EditOf(control_)) edit->setPasteFolder(ToQ(folder));
}

}  // namespace ui

#pragma once
// The kit's rich edit: a QTextEdit whose images carry the file they show and,
// for embedded objects such as emoticons, the text they stand for; whose
// pastes keep only text and pictures; and whose copies give that text.

#include <QTextEdit>

#include <vector>

#include "ui/kit/rich_edit.h"

namespace ui::qt {

class ImRichEdit : public QTextEdit {
  Q_OBJECT
 public:
  static constexpr int kPathProperty = QTextFormat::UserProperty + 1;
  static constexpr int kObjectTextProperty = QTextFormat::UserProperty + 2;

  explicit ImRichEdit(QWidget* parent = nullptr);

  bool insertImageFile(const QString& path, const QString& objectText);
  void pasteFiltered(const QMimeData* source);
  void setPasteFolder(const QString& folder) { pasteFolder_ = folder; }
  // The document in order: text runs and pictures.
  static std::vector<RichPiece> contentOf(const QTextDocument& document);

 protected:
  bool canInsertFromMimeData(const QMimeData* source) const override;
  void insertFromMimeData(const QMimeData* source) override;
  QMimeData* createMimeDataFromSelection() const override;
  QVariant loadResource(int type, const QUrl& name) override;

 private:
  QString savePastedImage(const QImage& image);

  QString pasteFolder_;
};

}  // namespace ui::qt

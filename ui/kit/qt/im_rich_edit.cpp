#include "ui/kit/qt/im_rich_edit.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QMimeData>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocumentFragment>
#include <QTextImageFormat>
#include <QUrl>

#include "platform/trace.h"

namespace ui::qt {
namespace {

constexpr int kEmoticonSide = 24;
constexpr int kPictureSide = 160;  // pictures are shown at most this wide or high

WString FromQ(const QString& s) {
  return WString(reinterpret_cast<const char16_t*>(s.utf16()), static_cast<size_t>(s.size()));
}

bool IsPicturePath(const QString& path) {
  static const QStringList kSuffixes = {"bmp", "jpg", "jpeg", "gif", "png"};
  return kSuffixes.contains(QFileInfo(path).suffix().toLower());
}

// Text as the user sees it: paragraph and line separators as line breaks,
// no-break spaces as spaces.
QString PlainRun(QString text) {
  text.replace(QChar::LineSeparator, u'\n');
  text.replace(QChar::ParagraphSeparator, u'\n');
  text.replace(QChar::Nbsp, u' ');
  return text;
}

void AppendText(std::vector<RichPiece>& out, const QString& text) {
  if (text.isEmpty()) return;
  if (out.empty() || out.back().kind != RichPiece::kText) out.push_back({RichPiece::kText, {}});
  out.back().value += FromQ(text);
}

}  // namespace

ImRichEdit::ImRichEdit(QWidget* parent) : QTextEdit(parent) {
  setAcceptRichText(false);
}

bool ImRichEdit::insertImageFile(const QString& path, const QString& objectText) {
  QImageReader reader(path);
  QSize size = reader.size();
  if (!reader.canRead() || !size.isValid()) {
    platform::Trace("ImRichEdit: not an image: %s", path.toUtf8().constData());
    return false;
  }
  const int side = objectText.isEmpty() ? kPictureSide : kEmoticonSide;
  if (size.width() > side || size.height() > side) size.scale(side, side, Qt::KeepAspectRatio);
  QTextImageFormat format;
  format.setName(QUrl::fromLocalFile(path).toString());
  format.setWidth(size.width());
  format.setHeight(size.height());
  format.setProperty(kPathProperty, path);
  if (!objectText.isEmpty()) {
    format.setProperty(kObjectTextProperty, objectText);
    format.setVerticalAlignment(QTextCharFormat::AlignMiddle);  // sits in the line like a glyph
  }
  QTextCursor cursor = textCursor();
  cursor.insertImage(format);
  setTextCursor(cursor);
  // What is typed next is text, not another image.
  setCurrentCharFormat(QTextCharFormat());
  return true;
}

std::vector<RichPiece> ImRichEdit::contentOf(const QTextDocument& document) {
  std::vector<RichPiece> out;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    if (block != document.begin()) AppendText(out, QStringLiteral("\n"));
    for (auto it = block.begin(); !it.atEnd(); ++it) {
      const QTextFragment fragment = it.fragment();
      const QTextCharFormat format = fragment.charFormat();
      if (!format.isImageFormat()) {
        AppendText(out, PlainRun(fragment.text()));
        continue;
      }
      // Adjacent identical images share one fragment: one per U+FFFC.
      const QString objectText = format.property(kObjectTextProperty).toString();
      const QString path = format.property(kPathProperty).toString();
      for (int i = 0; i < fragment.length(); ++i) {
        if (!objectText.isEmpty()) {
          AppendText(out, objectText);
        } else if (!path.isEmpty()) {
          out.push_back({RichPiece::kPicture, FromQ(path)});
        }
      }
    }
  }
  return out;
}

void ImRichEdit::pasteFiltered(const QMimeData* source) {
  if (source != nullptr && !isReadOnly()) insertFromMimeData(source);
}

bool ImRichEdit::canInsertFromMimeData(const QMimeData* source) const {
  return source->hasText() || source->hasImage() || source->hasUrls();
}

void ImRichEdit::insertFromMimeData(const QMimeData* source) {
  // Pictures that are files (copied in a file manager) keep their file.
  QStringList pictures;
  for (const QUrl& url : source->urls()) {
    if (url.isLocalFile() && IsPicturePath(url.toLocalFile())) pictures << url.toLocalFile();
  }
  if (!pictures.isEmpty()) {
    for (const QString& path : pictures) insertImageFile(path, QString());
    return;
  }
  if (source->hasImage()) {
    QString path = savePastedImage(qvariant_cast<QImage>(source->imageData()));
    if (!path.isEmpty()) insertImageFile(path, QString());
    return;
  }
  if (source->hasText()) {
    QTextCursor cursor = textCursor();
    cursor.insertText(source->text(), QTextCharFormat());
    setTextCursor(cursor);
    ensureCursorVisible();
  }
}

QMimeData* ImRichEdit::createMimeDataFromSelection() const {
  // Emoticons copy as their text; no markup leaves the composer.
  QTextDocument selection;
  QTextCursor(&selection).insertFragment(textCursor().selection());
  QString text;
  for (const RichPiece& piece : contentOf(selection)) {
    if (piece.kind == RichPiece::kText) {
      text += QString::fromUtf16(piece.value.data(), static_cast<qsizetype>(piece.value.size()));
    }
  }
  auto* data = new QMimeData;
  data->setText(text);
  return data;
}

QVariant ImRichEdit::loadResource(int type, const QUrl& name) {
  if (type == QTextDocument::ImageResource && name.isLocalFile()) {
    QImage image(name.toLocalFile());
    if (!image.isNull()) return image;
  }
  return QTextEdit::loadResource(type, name);
}

QString ImRichEdit::savePastedImage(const QImage& image) {
  if (image.isNull()) return {};
  QString folder = pasteFolder_.isEmpty() ? QDir::tempPath() : pasteFolder_;
  if (!QDir().mkpath(folder)) {
    platform::Trace("ImRichEdit: cannot create %s", folder.toUtf8().constData());
    return {};
  }
  static int counter = 0;
  QString name =
      QStringLiteral("paste-%1-%2.png")
          .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmsszzz")))
          .arg(++counter);
  QString path = QDir(folder).filePath(name);
  if (!image.save(path, "PNG")) {
    platform::Trace("ImRichEdit: cannot write %s", path.toUtf8().constData());
    return {};
  }
  return path;
}

}  // namespace ui::qt

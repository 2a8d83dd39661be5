#include "ui/kit/file_dialog.h"

#include <QApplication>
#include <QFileDialog>

#include "ui/kit/window_impl_base.h"

namespace ui {

WString ChooseOpenFile(WindowImplBase* owner, const WString& filterText, const WString& patterns) {
  QString text = QString::fromUtf16(filterText.data(), static_cast<qsizetype>(filterText.size()));
  QString globs = QString::fromUtf16(patterns.data(), static_cast<qsizetype>(patterns.size()));
  // The toolkit reads the patterns from the last parentheses, separated by
  // blanks; the shown text keeps its own form and the details stay hidden.
  globs.replace(u';', u' ');
  QFileDialog dialog(owner && owner->IsWindowVisible() ? QApplication::activeWindow() : nullptr);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilter(text + QStringLiteral(" (") + globs + u')');
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  QString path = dialog.selectedFiles().constFirst();
  return WString(reinterpret_cast<const char16_t*>(path.utf16()), static_cast<size_t>(path.size()));
}

}  // namespace ui

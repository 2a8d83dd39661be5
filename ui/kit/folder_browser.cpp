#include "ui/kit/folder_browser.h"

#include <QDir>
#include <QFileDialog>

namespace ui {

WString BrowseForFolder() {
  QString folder = QFileDialog::getExistingDirectory();
  if (folder.isEmpty()) return {};
  folder = QDir::toNativeSeparators(folder);
  return WString(reinterpret_cast<const char16_t*>(folder.utf16()),
                 static_cast<size_t>(folder.size()));
}

}  // namespace ui

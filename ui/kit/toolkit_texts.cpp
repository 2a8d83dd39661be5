#include "ui/kit/toolkit_texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QPointer>
#include <QTranslator>

#include "platform/trace.h"

namespace ui {

bool UseChineseToolkitTexts() {
  static QPointer<QTranslator> loaded;
  if (loaded) return true;
  if (QCoreApplication::instance() == nullptr) return false;
  auto* translator = new QTranslator(QCoreApplication::instance());
  QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
  if (!translator->load(QStringLiteral("qtbase_zh_CN"), folder)) {
    platform::Trace("UseChineseToolkitTexts: qtbase_zh_CN.qm not found in %s",
                    folder.toUtf8().constData());
    delete translator;
    return false;
  }
  QCoreApplication::installTranslator(translator);
  loaded = translator;
  return true;
}

}  // namespace ui

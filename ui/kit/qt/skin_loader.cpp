#include "ui/kit/qt/skin_loader.h"

#include <QDir>
#include <QFile>
#include <QtUiTools/QUiLoader>

#include "platform/trace.h"
#include "ui/kit/qt/im_list.h"

namespace ui::qt {
namespace {

class SkinUiLoader : public QUiLoader {
 public:
  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    if (className == QLatin1String("ImList")) {
      auto* list = new ImList(parent);
      list->setObjectName(name);
      return list;
    }
    return QUiLoader::createWidget(className, parent, name);
  }
};

}  // namespace

QWidget* LoadSkin(const QString& skinFolder, const QString& skinFile, QWidget* parent) {
  QFile file(QDir(skinFolder).filePath(skinFile));
  if (!file.open(QIODevice::ReadOnly)) {
    platform::Trace("LoadSkin: cannot open %s", file.fileName().toUtf8().constData());
    return nullptr;
  }
  SkinUiLoader loader;
  // Relative pictures in the skin resolve against its own folder.
  loader.setWorkingDirectory(QDir(skinFolder));
  QWidget* root = loader.load(&file, parent);
  if (!root) {
    platform::Trace("LoadSkin: %s: %s", file.fileName().toUtf8().constData(),
                    loader.errorString().toUtf8().constData());
  }
  return root;
}

}  // namespace ui::qt

#include "ui/kit/qt/skin_loader.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QtUiTools/QUiLoader>

#include "platform/trace.h"
#include "ui/kit/qt/im_animation.h"
#include "ui/kit/qt/chat_list_view.h"
#include "ui/kit/qt/im_list.h"
#include "ui/kit/qt/im_menu_element.h"
#include "ui/kit/qt/im_rich_edit.h"
#include "ui/kit/qt/row_list_view.h"
#include "ui/kit/resources.h"

namespace ui::qt {
namespace {

QWidget* Named(QWidget* widget, const QString& name) {
  widget->setObjectName(name);
  return widget;
}

class SkinUiLoader : public QUiLoader {
 public:
  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    if (className == QLatin1String("ImList")) return Named(new ImList(parent), name);
    if (className == QLatin1String("ImRowList")) return Named(new RowListView(parent), name);
    if (className == QLatin1String("ImAnimation")) {
      return Named(new ImAnimation(workingDirectory(), parent), name);
    }
    if (className == QLatin1String("ImChatList")) return Named(new ChatListView(parent), name);
    if (className == QLatin1String("ImMenuElement")) return Named(new ImMenuElement(parent), name);
    if (className == QLatin1String("QTextEdit")) return Named(new ImRichEdit(parent), name);
    return QUiLoader::createWidget(className, parent, name);
  }
};

// Skin files by path, read once: item templates are built many times.
QHash<QString, QByteArray>& SkinBytes() {
  static QHash<QString, QByteArray> cache;
  return cache;
}

}  // namespace

QWidget* LoadSkin(const QString& skinFolder, const QString& skinFile, QWidget* parent) {
  QString path = QDir(skinFolder).filePath(skinFile);
  auto cached = SkinBytes().constFind(path);
  if (cached == SkinBytes().constEnd()) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
      platform::Trace("LoadSkin: cannot open %s", path.toUtf8().constData());
      return nullptr;
    }
    cached = SkinBytes().insert(path, file.readAll());
  }
  QBuffer bytes;
  bytes.setData(*cached);
  bytes.open(QIODevice::ReadOnly);
  SkinUiLoader loader;
  // Relative pictures in the skin resolve against its own folder.
  loader.setWorkingDirectory(QDir(skinFolder));
  QWidget* root = loader.load(&bytes, parent);
  if (!root) {
    platform::Trace("LoadSkin: %s: %s", path.toUtf8().constData(),
                    loader.errorString().toUtf8().constData());
  }
  return root;
}

void ForgetSkinFiles() {
  SkinBytes().clear();
}

}  // namespace ui::qt

namespace ui::qt {

QString SkinFolderOf(const QWidget* widget) {
  for (; widget; widget = widget->parentWidget()) {
    QVariant folder = widget->property("im_skinFolder");
    if (folder.isValid()) return folder.toString();
  }
  return QString::fromStdString(ResourcePath("DuiLibRes/skin"));
}

}  // namespace ui::qt

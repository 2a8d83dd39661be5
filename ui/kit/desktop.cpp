#include "ui/kit/desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace ui {
namespace {

QString ToQ(const WString& s) {
  return QString::fromUtf16(s.data(), static_cast<qsizetype>(s.size()));
}

bool ShowItemByFileManager(const QString& path) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return false;
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"),
      QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
  return bus.call(call, QDBus::Block, 2000).type() == QDBusMessage::ReplyMessage;
}

class SystemDesktopImpl : public Desktop {
 public:
  bool OpenFile(const WString& path) override {
    QString file = ToQ(path);
    return QFileInfo::exists(file) && QDesktopServices::openUrl(QUrl::fromLocalFile(file));
  }

  bool ShowInFolder(const WString& path) override {
    QFileInfo file(ToQ(path));
    if (!file.exists()) return false;
    if (ShowItemByFileManager(file.absoluteFilePath())) return true;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(file.absolutePath()));
  }
};

}  // namespace

Desktop& SystemDesktop() {
  static SystemDesktopImpl desktop;
  return desktop;
}

}  // namespace ui

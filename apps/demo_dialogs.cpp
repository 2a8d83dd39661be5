#include "apps/demo_dialogs.h"

#include "apps/demo_input.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDeadlineTimer>
#include <QImage>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <filesystem>
#include <functional>

#include "apps/demo_script.h"
#include "apps/demo_world.h"
#include "host/local/local_host.h"
#include "platform/strings.h"

namespace demo {
namespace {

constexpr int kWaitMs = 5000;

}  // namespace

bool Save(QWidget* window, const std::string& path) {
  return window != nullptr && window->grab().save(QString::fromStdString(path));
}

QWidget* ShownWindow(const char* className) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == QLatin1String(className) && widget->isVisible()) return widget;
  }
  return nullptr;
}

bool Pump(const std::function<bool()>& done) {
  return PumpUntil(done, kWaitMs);
}

bool Click(QWidget* window, const char* name) {
  auto* button = window ? window->findChild<QAbstractButton*>(name) : nullptr;
  if (button == nullptr) return false;
  button->click();
  return true;
}

bool WithModal(const char* className, const std::function<void()>& open,
               const std::function<bool(QWidget*)>& act, bool closeIfOpen) {
  bool done = false;
  bool ok = false;
  std::function<void()> poll = [&] {
    QWidget* dialog = ShownWindow(className);
    if (dialog == nullptr) return QTimer::singleShot(10, poll);
    ok = act(dialog);
    done = true;
    if (closeIfOpen && ShownWindow(className) == dialog) dialog->close();
  };
  QTimer::singleShot(0, poll);
  open();
  return Pump([&] { return done && ShownWindow(className) == nullptr; }) && ok;
}

bool ShootAddFriend(const std::string& account, const std::string& menuPath,
                    const std::string& dialogPath) {
  if (!Click(FindChatWindow(), "CreateGroupBtn") ||
      !Pump([] { return ShownWindow("CAddFriendMenu ") != nullptr; })) {
    return false;
  }
  QWidget* menu = ShownWindow("CAddFriendMenu ");
  bool menuSaved = Save(menu, menuPath);
  bool dialogSaved = WithModal(
      "AddFriendWnd", [&] { Click(menu, "Elem_Menu_AddFriend"); },
      [&](QWidget* dialog) {
        auto* edit = dialog->findChild<QLineEdit*>("EdSearch");
        auto* result = dialog->findChild<QWidget*>("SearchResult");
        if (edit == nullptr || result == nullptr) return false;
        edit->setText(QString::fromStdString(account));
        Click(dialog, "BtnSearch");
        // The avatar is fetched in the background and replaces the default picture.
        auto* header = dialog->findChild<QWidget*>("HeaderImg");
        auto avatarShown = [&] {
          return header != nullptr &&
                 !header->property("im_attr_bkimage").toString().contains("PersonDefaultImg");
        };
        bool saved =
            Pump([&] { return result->isVisible() && avatarShown(); }) && Save(dialog, dialogPath);
        Click(dialog, "btnclose");
        return saved;
      });
  return menuSaved && dialogSaved;
}

void GiveStrangerAnAvatar(host::local::LocalHost& host, const std::string& dataRoot) {
  const std::filesystem::path folder = std::filesystem::path(dataRoot) / "demo-avatars";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  const std::string path = (folder / "zhao.png").string();
  QImage picture(96, 96, QImage::Format_ARGB32);
  picture.fill(QColor("#FFE9A23B"));
  QPainter painter(&picture);
  painter.setPen(Qt::white);
  QFont font = painter.font();
  font.setPixelSize(48);
  painter.setFont(font);
  painter.drawText(picture.rect(), Qt::AlignCenter, QString::fromUtf8("赵"));
  painter.end();
  if (picture.save(QString::fromStdString(path))) {
    host.SetAvatar(std::stoi(kStranger), platform::Utf8ToUtf16(path));
  }
}

bool ShootSettings(const std::string& path) {
  return WithModal(
      "SetUpWindow", [] { Click(FindChatWindow(), "IMSetUp"); },
      [&](QWidget* dialog) {
        bool saved = Save(dialog, path);
        Click(dialog, "SetUp_CancelBtn");
        return saved;
      });
}

}  // namespace demo

#include "apps/demo_dialogs.h"

#include "apps/demo_input.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTimer>
#include <QWidget>

#include <functional>

#include "apps/demo_script.h"

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
        bool saved = Pump([&] { return result->isVisible(); }) && Save(dialog, dialogPath);
        Click(dialog, "btnclose");
        return saved;
      });
  return menuSaved && dialogSaved;
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

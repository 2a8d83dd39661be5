#include "apps/demo_input.h"

#include "apps/demo_dialogs.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

#include <cstdio>

namespace demo {
namespace {

QAbstractItemView* ConversationList(QWidget* window) {
  auto* list =
      window ? window->findChild<QAbstractItemView*>(QStringLiteral("ConversationList")) : nullptr;
  return list && list->model() ? list : nullptr;
}

}  // namespace

bool PumpUntil(const std::function<bool()>& done, int milliseconds) {
  QDeadlineTimer deadline(milliseconds);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

void Click(QWidget* widget, QPointF at) {
  QPointF global = widget->mapToGlobal(at);
  QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton,
                      Qt::NoModifier);
  QApplication::sendEvent(widget, &press);
  QApplication::sendEvent(widget, &release);
}

void Type(QWidget* widget, const QString& text) {
  for (QChar c : text) {
    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
    QApplication::sendEvent(widget, &press);
  }
}

void PressKey(QWidget* widget, int key) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(widget, &press);
}

bool ClickListRow(QWidget* window, const char* listName, const QString& name, int fromLeft) {
  auto* list = window ? window->findChild<QAbstractItemView*>(listName) : nullptr;
  if (list == nullptr || list->model() == nullptr) return false;
  for (int row = 0; row < list->model()->rowCount(); ++row) {
    QModelIndex index = list->model()->index(row, 0);
    if (index.data(Qt::AccessibleTextRole).toString() != name) continue;
    list->scrollTo(index);
    QRect rect = list->visualRect(index);
    QPoint at(fromLeft < 0 ? rect.center().x() : rect.left() + fromLeft, rect.center().y());
    for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      QMouseEvent click(type, at, list->viewport()->mapToGlobal(at), Qt::LeftButton,
                        type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                        Qt::NoModifier);
      QApplication::sendEvent(list->viewport(), &click);
    }
    return true;
  }
  return false;
}

bool OpenConversationNamed(QWidget* window, const QString& name) {
  return ClickListRow(window, "ConversationList", name);
}

QString ConversationNameAt(QWidget* window, int row) {
  QAbstractItemView* list = ConversationList(window);
  if (list == nullptr || row >= list->model()->rowCount()) return {};
  return list->model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
}

bool SaveShot(QWidget* window, const std::string& path, std::vector<std::string>& shots) {
  QCoreApplication::processEvents();
  if (!Save(window, path)) {
    std::printf("Could not write the screenshot %s.\n", path.c_str());
    return false;
  }
  shots.push_back(path);
  return true;
}

}  // namespace demo

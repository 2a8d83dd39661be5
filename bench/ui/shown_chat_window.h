#pragma once
// What the window benchmarks share: the one offscreen QApplication and the
// module's chat window, shown, over a service fed with data.

#include <functional>

#include <QAbstractItemView>
#include <QApplication>
#include <QFont>

#include "service/chat_tools.h"
#include "ui/kit/resources.h"
#include "ui/main/im_wnd.h"
#include "ui/port/chat_window_port.h"

namespace bench {

inline QApplication& App() {
  static int argc = 1;
  static char name[] = "ui_bench";
  static char* argv[] = {name, nullptr};
  static QApplication* app = [] {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    auto* made = new QApplication(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
    ui::SetResourceRoot(IM_RESOURCE_ROOT);
    return made;
  }();
  return *app;
}

// What the event loop does for a list after its rows changed, done now: the
// rows are laid out (a reset only schedules that) and those in view painted.
// Without the layout a repaint draws an empty list.
inline void LayOutAndPaint(QAbstractItemView& view) {
  view.doItemsLayout();
  view.viewport()->repaint();
}

struct ShownChatWindow {
  ShownChatWindow() {
    App();
    tools.AttachWindow(&port);
    window.CreateChatWindow();
    window.ShowChat();
  }
  ~ShownChatWindow() {
    tools.AttachWindow(nullptr);
    window.DestroyChatWindow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  // Hands the service its data and lets the window take the messages that follow.
  void Feed(const std::function<void()>& feed) {
    feed();
    QCoreApplication::processEvents();
  }

  CChatTools tools;
  CIMWnd window{tools};
  ui::ChatWindowPort port{window};
};

}  // namespace bench

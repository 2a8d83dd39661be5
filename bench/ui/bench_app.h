#pragma once
// The one QApplication of a ui benchmark binary, offscreen, with the pinned
// font and this tree's resources.

#include <QApplication>
#include <QFont>

#include "ui/kit/resources.h"

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

}  // namespace bench

// One QApplication for the whole binary, made after GoogleTest has taken its
// flags; headless unless the caller chose a platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

#include "ui/kit/resources.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  // Pinned so that sizes and pictures do not depend on the machine's fonts.
  QApplication::setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
  ui::SetResourceRoot(IM_RESOURCE_ROOT);
  int result = RUN_ALL_TESTS();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return result;
}

#include "ui/kit/host_window.h"

#include <QApplication>
#include <QWidget>

#include "ui/kit/qt/host_widget.h"

namespace ui {
namespace qt {

QWidget* HostWidget(HostWindow window) {
  if (window.nativeId == nullptr || QApplication::instance() == nullptr) return nullptr;
  return QWidget::find(static_cast<WId>(reinterpret_cast<uintptr_t>(window.nativeId)));
}

}  // namespace qt

std::optional<Rect> HostWindowFrame(HostWindow window) {
  QWidget* frame = qt::HostWidget(window);
  if (frame == nullptr) return std::nullopt;
  QRect g = frame->frameGeometry();
  return Rect{g.left(), g.top(), g.left() + g.width(), g.top() + g.height()};
}

void FlashHostWindowIfMinimised(HostWindow window) {
  QWidget* frame = qt::HostWidget(window);
  if (frame != nullptr && frame->isMinimized()) QApplication::alert(frame);
}

}  // namespace ui

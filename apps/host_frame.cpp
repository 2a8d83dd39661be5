#include "apps/host_frame.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QPainter>
#include <QWidget>

namespace demo {
namespace {

// A few walls and a dimension line: enough to look like a floor plan.
class PlaceholderDrawing : public QWidget {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    p.fillRect(rect(), QColor(0x21, 0x28, 0x30));
    p.setPen(QPen(QColor(0x5D, 0xC8, 0xCD), 2));
    QRect plan = rect().adjusted(60, 80, -60, -80);
    p.drawRect(plan);
    p.drawLine(plan.center().x(), plan.top(), plan.center().x(), plan.bottom() - 80);
    p.drawLine(plan.left(), plan.center().y(), plan.center().x() - 40, plan.center().y());
    p.setPen(QColor(0xDD, 0xE0, 0xE4));
    p.drawText(rect().adjusted(0, 20, 0, 0), Qt::AlignHCenter | Qt::AlignTop,
               QStringLiteral("一层平面图.dwg（占位图纸）"));
  }
};

}  // namespace

HostFrame::HostFrame() {
  setObjectName(QStringLiteral("DemoHostFrame"));
  setWindowTitle(QStringLiteral("绘图主机 — 聊天模块演示"));
  setCentralWidget(new PlaceholderDrawing);
  setGeometry(40, 40, 560, 680);
}

void* HostFrame::NativeHandle() {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(winId()));
}

void HostFrame::closeEvent(QCloseEvent* event) {
  event->accept();
  QCoreApplication::quit();
}

}  // namespace demo

#include "ui/kit/qt/frame_drag.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace ui::qt {
namespace {

// Controls that use the mouse themselves are never a handle to drag by.
bool TakesMouse(QWidget* widget) {
  for (QWidget* w = widget; w; w = w->parentWidget()) {
    if (qobject_cast<QAbstractButton*>(w) || qobject_cast<QLineEdit*>(w) ||
        qobject_cast<QAbstractScrollArea*>(w) || qobject_cast<QComboBox*>(w)) {
      return true;
    }
    if (w->isWindow()) break;
  }
  return false;
}

}  // namespace

Qt::Edges FrameDrag::EdgesAt(QPoint p) const {
  Qt::Edges edges;
  if (border_ <= 0 || window_->isMaximized()) return edges;
  if (p.x() < border_) edges |= Qt::LeftEdge;
  if (p.x() >= window_->width() - border_) edges |= Qt::RightEdge;
  if (p.y() < border_) edges |= Qt::TopEdge;
  if (p.y() >= window_->height() - border_) edges |= Qt::BottomEdge;
  return edges;
}

bool FrameDrag::InCaption(QWidget* widget, QPoint p) const {
  return p.y() >= 0 && p.y() < captionHeight_ && !TakesMouse(widget);
}

bool FrameDrag::Start(QMouseEvent* mouse, QPoint p, QWidget* widget) {
  Qt::Edges edges = EdgesAt(p);
  if (!edges && !InCaption(widget, p)) return false;
  QWindow* handle = window_->windowHandle();
  bool system = handle && (edges ? handle->startSystemResize(edges) : handle->startSystemMove());
  if (system) return true;
  dragging_ = true;
  edges_ = edges;
  startGlobal_ = mouse->globalPosition().toPoint();
  startGeometry_ = window_->geometry();
  return true;
}

void FrameDrag::Follow(QPoint globalPos) {
  QPoint delta = globalPos - startGlobal_;
  if (!edges_) {
    window_->move(startGeometry_.topLeft() + delta);
    return;
  }
  QRect g = startGeometry_;
  QSize least = window_->minimumSizeHint().expandedTo(window_->minimumSize());
  if (edges_ & Qt::LeftEdge) g.setLeft(std::min(g.left() + delta.x(), g.right() - least.width()));
  if (edges_ & Qt::RightEdge) g.setRight(std::max(g.right() + delta.x(), g.left() + least.width()));
  if (edges_ & Qt::TopEdge) g.setTop(std::min(g.top() + delta.y(), g.bottom() - least.height()));
  if (edges_ & Qt::BottomEdge) {
    g.setBottom(std::max(g.bottom() + delta.y(), g.top() + least.height()));
  }
  window_->setGeometry(g);
}

bool FrameDrag::Filter(QWidget* widget, QEvent* event) {
  auto type = event->type();
  if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove &&
      type != QEvent::MouseButtonRelease) {
    return false;
  }
  auto* mouse = static_cast<QMouseEvent*>(event);
  if (type == QEvent::MouseMove) {
    if (!dragging_) return false;
    Follow(mouse->globalPosition().toPoint());
    return true;
  }
  if (mouse->button() != Qt::LeftButton) return false;
  if (type == QEvent::MouseButtonRelease) {
    bool was = dragging_;
    dragging_ = false;
    return was;
  }
  // Only the deepest widget decides (the press bubbles up to its parents).
  QPoint local = mouse->position().toPoint();
  if (widget->childAt(local) != nullptr) return false;
  return Start(mouse, widget->mapTo(window_, local), widget);
}

}  // namespace ui::qt

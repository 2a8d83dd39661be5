#pragma once
// Moving and resizing a frameless window by hand: a press in its caption
// area (outside any control that takes the mouse) drags the window, a press
// within the sizing border of an edge or corner resizes it. The system's
// own move and resize are asked for first; where the platform has none
// (offscreen, some X11 window managers) the window follows the mouse.

#include <QPoint>
#include <QRect>

class QEvent;
class QMouseEvent;
class QWidget;

namespace ui::qt {

class FrameDrag {
 public:
  explicit FrameDrag(QWidget* window) : window_(window) {}

  // Caption: the top `height` pixels; border: `pixels` wide sizing edges.
  void SetCaptionHeight(int height) { captionHeight_ = height; }
  void SetSizingBorder(int pixels) { border_ = pixels; }

  // Seen for every mouse event of the window's widgets, deepest first;
  // true when the event moved or resized the window.
  bool Filter(QWidget* widget, QEvent* event);

 private:
  Qt::Edges EdgesAt(QPoint windowPos) const;
  bool InCaption(QWidget* widget, QPoint windowPos) const;
  bool Start(QMouseEvent* mouse, QPoint windowPos, QWidget* widget);
  void Follow(QPoint globalPos);

  QWidget* window_;
  int captionHeight_ = 0;
  int border_ = 0;
  bool dragging_ = false;
  Qt::Edges edges_;  // empty while moving
  QPoint startGlobal_;
  QRect startGeometry_;
};

}  // namespace ui::qt

#pragma once
// The toolkit side of a Control handle. Only kit code and tests include this.

#include <memory>

#include <QPointer>
#include <QWidget>

#include "ui/kit/control.h"

namespace ui {

struct ControlRef {
  QPointer<QWidget> widget;
};

namespace qt {

inline Control MakeControl(QWidget* widget) {
  if (!widget) return Control();
  return Control(std::make_shared<ControlRef>(ControlRef{widget}));
}

inline QWidget* WidgetOf(const Control& control) {
  return control.ref() ? control.ref()->widget.data() : nullptr;
}

// Controls are the widgets the skin named; toolkit-made helpers ("qt_..."),
// unnamed containers and the window frame are not.
bool IsNamedControl(const QWidget* widget);
// The widget itself or its nearest ancestor that is a named control.
QWidget* NearestControl(QWidget* widget);

}  // namespace qt
}  // namespace ui

#pragma once
// Per-control colours ("bkcolor", "textcolor") layered over the skin's own
// style sheet of that control.

#include <QColor>
#include <QWidget>

namespace ui::qt {

void SetControlColor(QWidget* widget, const char* role, QColor color);

}  // namespace ui::qt

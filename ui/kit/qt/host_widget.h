#pragma once
// Kit-internal: the widget of a host window, or null when the id finds none.

#include "ui/kit/host_window.h"

class QWidget;

namespace ui::qt {

QWidget* HostWidget(HostWindow window);

}  // namespace ui::qt

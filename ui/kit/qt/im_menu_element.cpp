#include "ui/kit/qt/im_menu_element.h"

namespace ui::qt {

ImMenuElement::ImMenuElement(QWidget* parent) : QPushButton(parent) {
  setFlat(true);
  setCursor(Qt::PointingHandCursor);
}

}  // namespace ui::qt

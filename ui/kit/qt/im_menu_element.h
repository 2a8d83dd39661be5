#pragma once
// An item of a skinned menu ("ImMenuElement" in skins): a flat button whose
// activation (click, Space) is an item click, as menu items report it.

#include <QPushButton>

namespace ui::qt {

class ImMenuElement : public QPushButton {
  Q_OBJECT
 public:
  explicit ImMenuElement(QWidget* parent = nullptr);
};

}  // namespace ui::qt

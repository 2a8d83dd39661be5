#pragma once
// A context menu of plain items. Track shows it at a screen point and
// returns at once; the item the user picks reaches the owner window as
// kWmCommand with the item's command id. A menu that is never tracked is
// simply destroyed with this object.

#include <memory>

#include "platform/strings.h"
#include "ui/kit/control.h"

class QMenu;

namespace ui {

class WindowImplBase;

class PopupMenu {
 public:
  PopupMenu();
  ~PopupMenu();
  PopupMenu(const PopupMenu&) = delete;
  PopupMenu& operator=(const PopupMenu&) = delete;

  void AppendItem(unsigned commandId, const WString& text);
  int ItemCount() const;
  // False when the owner has no window or the menu has no items; the menu
  // belongs to the owner's window from here on.
  bool Track(const Point& screenPoint, WindowImplBase& owner);

 private:
  std::unique_ptr<QMenu> menu_;
};

}  // namespace ui

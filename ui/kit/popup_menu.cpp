#include "ui/kit/popup_menu.h"

#include <QMenu>

#include "ui/kit/qt/window_host.h"
#include "ui/kit/window_impl_base.h"

namespace ui {

PopupMenu::PopupMenu() : menu_(std::make_unique<QMenu>()) {
  menu_->setObjectName(QStringLiteral("PopupMenu"));
}

PopupMenu::~PopupMenu() = default;

void PopupMenu::AppendItem(unsigned commandId, const WString& text) {
  if (!menu_) return;
  QAction* action =
      menu_->addAction(QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())));
  action->setData(commandId);
}

int PopupMenu::ItemCount() const {
  return menu_ ? static_cast<int>(menu_->actions().size()) : 0;
}

bool PopupMenu::Track(const Point& screenPoint, WindowImplBase& owner) {
  QWidget* host = owner.host_;
  if (!menu_ || !host || menu_->actions().isEmpty()) return false;
  QMenu* menu = menu_.release();
  // Parented to the window so that it goes with it; gone once closed.
  menu->setParent(host, menu->windowFlags());
  menu->setAttribute(Qt::WA_DeleteOnClose);
  platform::WindowHandle window = owner.GetHWND();
  QObject::connect(menu, &QMenu::triggered, menu, [window](QAction* action) {
    platform::PostMessage(window, kWmCommand, action->data().toUInt(), 0);
  });
  menu->popup(QPoint(screenPoint.x, screenPoint.y));
  return true;
}

}  // namespace ui

#include "ui/kit/qt/im_list.h"

#include <QEvent>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace ui::qt {

ImList::ImList(QWidget* parent) : QScrollArea(parent), column_(new QWidget), layout_(nullptr) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  layout_ = new QVBoxLayout(column_);
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(0);
  layout_->addStretch(1);  // keeps items at the top
  setWidget(column_);
}

bool ImList::AddAt(QWidget* item, int index) {
  if (!item || item == this || item->isAncestorOf(this)) return false;
  int count = Count();
  if (index < 0 || index > count) index = count;
  layout_->insertWidget(index, item);
  item->installEventFilter(this);
  item->show();
  return true;
}

bool ImList::Remove(QWidget* item) {
  int index = IndexOf(item);
  if (index < 0) return false;
  layout_->removeWidget(item);
  delete item;
  return true;
}

void ImList::RemoveAll() {
  // Hidden while emptying: a visible column relays out after every removal.
  column_->setUpdatesEnabled(false);
  while (Count() > 0) {
    QLayoutItem* entry = layout_->takeAt(0);
    delete entry->widget();
    delete entry;
  }
  column_->setUpdatesEnabled(true);
}

int ImList::Count() const {
  return layout_->count() - 1;
}

QWidget* ImList::ItemAt(int index) const {
  if (index < 0 || index >= Count()) return nullptr;
  return layout_->itemAt(index)->widget();
}

int ImList::IndexOf(QWidget* item) const {
  if (!item) return -1;
  int index = layout_->indexOf(item);
  return index < Count() ? index : -1;
}

void ImList::SetSpacing(int pixels) {
  layout_->setSpacing(pixels);
}

bool ImList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    auto* mouse = static_cast<QMouseEvent*>(event);
    auto* item = qobject_cast<QWidget*>(watched);
    if (mouse->button() == Qt::LeftButton && item &&
        item->rect().contains(mouse->position().toPoint()) && IndexOf(item) >= 0) {
      emit itemClicked(item);
    }
  }
  return QScrollArea::eventFilter(watched, event);
}

}  // namespace ui::qt

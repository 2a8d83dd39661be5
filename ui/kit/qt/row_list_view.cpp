#include "ui/kit/qt/row_list_view.h"

#include <algorithm>

#include <QAbstractButton>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyledItemDelegate>

#include "ui/kit/control.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/skin_loader.h"

namespace ui::qt {
namespace {

std::u16string KeyOf(const QString& s) {
  return std::u16string(reinterpret_cast<const char16_t*>(s.utf16()),
                        static_cast<size_t>(s.size()));
}

WString ToW(const QString& s) {
  return KeyOf(s);
}

// Paints each row in view with the stamp bound to it.
class StampDelegate : public QStyledItemDelegate {
 public:
  explicit StampDelegate(RowListView* view) : QStyledItemDelegate(view), view_(view) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    if (option.state & QStyle::State_Selected) {
      painter->fillRect(option.rect, QColor(0xDC, 0xDF, 0xE3));
    } else if (option.state & QStyle::State_MouseOver) {
      painter->fillRect(option.rect, QColor(0xE6, 0xE8, 0xEB));
    }
    QWidget* stamp = view_->BindStamp(index.row(), option.rect.width());
    if (!stamp) return;
    // Drawn into a pixmap first: QWidget::render straight into the painter of
    // a view inside a window shifts the row by the view's place in the window.
    qreal ratio = painter->device()->devicePixelRatioF();
    QPixmap row(option.rect.size() * ratio);
    row.setDevicePixelRatio(ratio);
    row.fill(Qt::transparent);
    stamp->render(&row, QPoint(), QRegion(), QWidget::DrawChildren);
    painter->drawPixmap(option.rect.topLeft(), row);
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return QSize(option.rect.width(), view_->RowHeight());
  }

 private:
  RowListView* view_;
};

}  // namespace

// ----- RowModel -------------------------------------------------------------

int RowModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
  const Row* row = RowAt(index.row());
  if (!row) return {};
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) {
    return row->values.value(Key({nameControl_, QStringLiteral("text")}));
  }
  return {};
}

int RowModel::Insert(int index, const QString& userData) {
  int count = static_cast<int>(rows_.size());
  if (index < 0 || index > count) index = count;
  if (batch_ == 0) beginInsertRows({}, index, index);
  rows_.insert(rows_.begin() + index, Row{userData, {}});
  if (index == count) {
    index_.try_emplace(KeyOf(userData), index);
  } else {
    Reindex(index);
  }
  if (batch_ == 0) {
    endInsertRows();
  } else {
    batchDirty_ = true;
  }
  return index;
}

bool RowModel::Remove(int index) {
  if (!RowAt(index)) return false;
  if (batch_ == 0) beginRemoveRows({}, index, index);
  rows_.erase(rows_.begin() + index);
  Reindex(index);
  if (batch_ == 0) {
    endRemoveRows();
  } else {
    batchDirty_ = true;
  }
  return true;
}

void RowModel::Clear() {
  if (batch_ == 0) beginResetModel();
  rows_.clear();
  index_.clear();
  if (batch_ == 0) {
    endResetModel();
  } else {
    batchDirty_ = true;
  }
}

void RowModel::Reindex(int from) {
  // Rows after `from` moved: their entries are rebuilt (inserting at the
  // front is the one common case, and happens once per opened conversation).
  for (auto it = index_.begin(); it != index_.end();) {
    it = it->second >= from ? index_.erase(it) : std::next(it);
  }
  for (int i = from; i < static_cast<int>(rows_.size()); ++i) {
    index_.try_emplace(KeyOf(rows_[i].userData), i);
  }
  // An earlier duplicate keeps its place; a later one may now be first.
  for (int i = 0; i < from; ++i) {
    auto it = index_.find(KeyOf(rows_[i].userData));
    if (it != index_.end() && it->second > i) it->second = i;
  }
}

int RowModel::Find(const QString& userData) const {
  auto it = index_.find(KeyOf(userData));
  return it == index_.end() ? -1 : it->second;
}

const RowModel::Row* RowModel::RowAt(int index) const {
  if (index < 0 || index >= static_cast<int>(rows_.size())) return nullptr;
  return &rows_[static_cast<size_t>(index)];
}

void RowModel::SetValue(int index, const RowSlot& slot, const QString& value) {
  if (!RowAt(index)) return;
  if (std::find(slots_.begin(), slots_.end(), slot) == slots_.end()) slots_.push_back(slot);
  QString& stored = rows_[static_cast<size_t>(index)].values[Key(slot)];
  if (stored == value) return;
  stored = value;
  Changed(index);
}

QString RowModel::Value(int index, const RowSlot& slot) const {
  const Row* row = RowAt(index);
  return row ? row->values.value(Key(slot)) : QString();
}

void RowModel::Changed(int index) {
  if (batch_ > 0) {
    batchDirty_ = true;
    return;
  }
  QModelIndex at = this->index(index);
  emit dataChanged(at, at);
}

void RowModel::BeginBatch() {
  if (batch_++ == 0) {
    batchDirty_ = false;
    beginResetModel();
  }
}

void RowModel::EndBatch() {
  if (batch_ == 0 || --batch_ > 0) return;
  endResetModel();
}

// ----- RowListView ----------------------------------------------------------

RowListView::RowListView(QWidget* parent) : QListView(parent), model_(new RowModel) {
  model_->setParent(this);
  setModel(model_);
  setItemDelegate(new StampDelegate(this));
  setUniformItemSizes(true);
  setMouseTracking(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setFrameShape(QFrame::NoFrame);
}

bool RowListView::SetTemplate(const QString& skinFolder, const QString& skinFile, int rowHeight) {
  QWidget* stamp = LoadSkin(skinFolder, skinFile, this);
  if (!stamp) return false;
  delete stamp_;
  stamp_ = stamp;
  boundRow_ = -1;
  stamp_->setProperty("im_skinFolder", skinFolder);
  stamp_->setProperty("im_stamp", true);
  stamp_->hide();
  stampControls_.clear();
  for (QWidget* w : stamp_->findChildren<QWidget*>()) {
    if (IsNamedControl(w)) stampControls_.insert(w->objectName(), w);
  }
  stampControls_.insert(stamp_->objectName(), stamp_);
  rowHeight_ = rowHeight > 0 ? rowHeight : stamp_->height();
  scheduleDelayedItemsLayout();
  return true;
}

QWidget* RowListView::BindStamp(int row, int width) {
  const RowModel::Row* data = model_->RowAt(row);
  if (!stamp_ || !data) return nullptr;
  boundRow_ = row;
  Control root = MakeControl(stamp_);
  root.SetUserData(ToW(data->userData));
  for (const RowSlot& slot : model_->Slots()) {
    QWidget* target = stampControls_.value(slot.control);
    if (!target) continue;
    Control control = MakeControl(target);
    QString value = data->values.value(RowModel::Key(slot));
    if (control.GetAttribute(slot.attribute.toStdString()) == ToW(value) &&
        slot.attribute != QLatin1String("text")) {
      continue;  // images are the slow part: applied only when they differ
    }
    control.SetAttribute(slot.attribute.toStdString(), ToW(value));
  }
  QSize size(width, rowHeight_);
  if (stamp_->size() != size) stamp_->resize(size);
  if (stamp_->layout()) stamp_->layout()->activate();
  return stamp_;
}

QWidget* RowListView::ControlAt(QPoint viewportPos) {
  QModelIndex index = indexAt(viewportPos);
  if (!index.isValid()) return nullptr;
  QRect rect = visualRect(index);
  QWidget* stamp = BindStamp(index.row(), rect.width());
  if (!stamp) return nullptr;
  QWidget* hit = stamp->childAt(viewportPos - rect.topLeft());
  QWidget* control = NearestControl(hit ? hit : stamp);
  return control ? control : stamp;
}

void RowListView::mouseReleaseEvent(QMouseEvent* event) {
  QListView::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton) return;
  QWidget* control = ControlAt(event->position().toPoint());
  if (!control) return;
  if (qobject_cast<QAbstractButton*>(control)) {
    emit controlClicked(control);
  } else {
    emit itemClicked(stamp_);
  }
}

RowListView* RowListOfViewport(QWidget* widget) {
  auto* view = widget ? qobject_cast<RowListView*>(widget->parentWidget()) : nullptr;
  return view && view->viewport() == widget ? view : nullptr;
}

QWidget* ControlUnder(QWidget* widget, QPoint localPos) {
  if (RowListView* view = RowListOfViewport(widget)) {
    if (QWidget* control = view->ControlAt(localPos)) return control;
  }
  return NearestControl(widget);
}

}  // namespace ui::qt

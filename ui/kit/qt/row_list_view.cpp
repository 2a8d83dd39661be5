#include "ui/kit/qt/row_list_view.h"

#include <algorithm>
#include <cstdint>

#include <QAbstractButton>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyledItemDelegate>

#include "ui/kit/control.h"
#include "ui/kit/qt/chat_list_view.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/skin_loader.h"
#include "ui/kit/qt/stamp_hit.h"

namespace ui::qt {
namespace {

QString ToQ(const WString& s) {
  return QString::fromUtf16(s.data(), static_cast<qsizetype>(s.size()));
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
    // Drawn into a buffer first: rendering a widget straight into another
    // widget's painter places it by the widgets' own positions.
    qreal ratio = painter->device()->devicePixelRatioF();
    QSize pixels = option.rect.size() * ratio;
    if (buffer_.size() != pixels) {
      buffer_ = QPixmap(pixels);
      buffer_.setDevicePixelRatio(ratio);
    }
    buffer_.fill(Qt::transparent);
    stamp->render(&buffer_, QPoint(), QRegion(), QWidget::DrawChildren);
    painter->drawPixmap(option.rect.topLeft(), buffer_);
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return QSize(option.rect.width(), view_->RowHeight());
  }

 private:
  RowListView* view_;
  mutable QPixmap buffer_;
};

}  // namespace

// ----- RowModel -------------------------------------------------------------

int RowModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
  if (!RowAt(index.row()) || nameSlot_ < 0) return {};
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) {
    // Reading a row may produce its values: the model's data stays the same
    // to every reader, only its making is deferred.
    return ToQ(const_cast<RowModel*>(this)->Value(index.row(), nameSlot_));
  }
  return {};
}

int RowModel::Insert(int index, const WString& userData) {
  int count = static_cast<int>(rows_.size());
  if (index < 0 || index > count) index = count;
  if (batch_ == 0) beginInsertRows({}, index, index);
  rows_.insert(rows_.begin() + index, Row{userData, {}});
  if (index == count) {
    index_.try_emplace(userData, index);
  } else {
    Reindex(index);
  }
  if (batch_ == 0) endInsertRows();
  return index;
}

bool RowModel::Remove(int index) {
  if (!RowAt(index)) return false;
  if (batch_ == 0) beginRemoveRows({}, index, index);
  rows_.erase(rows_.begin() + index);
  Reindex(index);
  if (batch_ == 0) endRemoveRows();
  return true;
}

void RowModel::Clear() {
  if (batch_ == 0) beginResetModel();
  rows_.clear();
  index_.clear();
  if (batch_ == 0) endResetModel();
}

void RowModel::Reindex(int from) {
  // Rows from `from` on moved: their entries are rebuilt (inserting at the
  // front happens once per opened conversation, not per row).
  for (auto it = index_.begin(); it != index_.end();) {
    it = it->second >= from ? index_.erase(it) : std::next(it);
  }
  for (int i = from; i < static_cast<int>(rows_.size()); ++i) {
    index_.try_emplace(rows_[static_cast<size_t>(i)].userData, i);
  }
}

int RowModel::Find(const WString& userData) const {
  auto it = index_.find(userData);
  return it == index_.end() ? -1 : it->second;
}

const RowModel::Row* RowModel::RowAt(int index) const {
  if (index < 0 || index >= static_cast<int>(rows_.size())) return nullptr;
  return &rows_[static_cast<size_t>(index)];
}

int RowModel::SlotOf(std::string_view control, std::string_view attribute) {
  // Panes fill row after row naming slots with the same literals: the slot
  // last found for a pair of text addresses is tried first (its texts are
  // still compared, so a reused address cannot pick a wrong slot).
  auto address = [](std::string_view s) { return reinterpret_cast<uintptr_t>(s.data()); };
  int& hint = slotHints_[(address(control) ^ (address(attribute) >> 3)) % slotHints_.size()];
  auto matches = [&](int i) {
    const Slot& slot = slots_[static_cast<size_t>(i)];
    return slot.control == control && slot.attribute == attribute;
  };
  if (hint >= 0 && matches(hint)) return hint;
  int found = 0;
  while (found < static_cast<int>(slots_.size()) && !matches(found)) ++found;
  if (found == static_cast<int>(slots_.size())) {
    slots_.push_back(Slot{std::string(control), std::string(attribute)});
  }
  hint = found;
  return found;
}

void RowModel::Fill(int index) {
  if (!filler_ || !RowAt(index) || rows_[static_cast<size_t>(index)].filled) return;
  rows_[static_cast<size_t>(index)].filled = true;  // before: the filler sets values
  int outer = filling_;
  filling_ = index;
  filler_(index);
  filling_ = outer;
}

void RowModel::SetValue(int index, int slot, const WString& value) {
  if (!RowAt(index) || slot < 0) return;
  Fill(index);  // a value set before the row was made is not overwritten by its making
  std::vector<WString>& values = rows_[static_cast<size_t>(index)].values;
  if (values.size() <= static_cast<size_t>(slot)) values.resize(slots_.size());
  if (values[static_cast<size_t>(slot)] == value) return;
  values[static_cast<size_t>(slot)] = value;
  Changed(index);
}

const WString& RowModel::Value(int index, int slot) {
  static const WString kEmpty;
  Fill(index);
  const Row* row = RowAt(index);
  if (!row || slot < 0 || static_cast<size_t>(slot) >= row->values.size()) return kEmpty;
  return row->values[static_cast<size_t>(slot)];
}

void RowModel::Changed(int index) {
  // A batch's reset repaints everything; a row being made is being painted
  // or read right now.
  if (batch_ > 0 || index == filling_) return;
  QModelIndex at = this->index(index);
  emit dataChanged(at, at);
}

void RowModel::BeginBatch() {
  if (batch_++ == 0) beginResetModel();
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
  slotTargets_.clear();
  shown_.clear();
  rowHeight_ = rowHeight > 0 ? rowHeight : stamp_->height();
  scheduleDelayedItemsLayout();
  return true;
}

QWidget* RowListView::BindStamp(int row, int width) {
  model_->Fill(row);
  const RowModel::Row* data = model_->RowAt(row);
  if (!stamp_ || !data) return nullptr;
  boundRow_ = row;
  MakeControl(stamp_).SetUserData(data->userData);
  const std::vector<RowModel::Slot>& valueSlots = model_->Slots();
  for (size_t i = slotTargets_.size(); i < valueSlots.size(); ++i) {
    Control found = MakeControl(stamp_).FindSubControl(valueSlots[i].control);
    slotTargets_.push_back(WidgetOf(found));
    shown_.emplace_back();
  }
  for (size_t i = 0; i < valueSlots.size(); ++i) {
    if (!slotTargets_[i]) continue;
    const WString& value = model_->Value(row, static_cast<int>(i));
    if (shown_[i] == value) continue;  // unchanged from the last row drawn
    shown_[i] = value;
    MakeControl(slotTargets_[i]).SetAttribute(valueSlots[i].attribute, value);
  }
  QSize size(width, rowHeight_);
  if (stamp_->size() != size) stamp_->resize(size);
  if (stamp_->layout()) stamp_->layout()->activate();
  return stamp_;
}

QWidget* RowListView::ControlAt(QPoint viewportPos) {
  return StampControlAt(*this, viewportPos);
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
  if (ChatListView* view = ChatListOfViewport(widget)) {
    if (QWidget* control = view->ControlAt(localPos)) return control;
  }
  return NearestControl(widget);
}

}  // namespace ui::qt

#include "ui/kit/qt/chat_list_view.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QImageReader>
#include <QKeyEvent>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTextCursor>
#include <QTextEdit>
#include <QTextImageFormat>

#include <deque>
#include <string>

#include "platform/strings.h"
#include "ui/kit/attributes.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/qt_text.h"
#include "ui/kit/qt/skin_loader.h"
#include "ui/kit/qt/stamp_hit.h"

namespace ui::qt {
namespace {

constexpr int kEmoticonSide = 24;
constexpr int kProgressWidth = 160;
constexpr int kProgressHeight = 6;
constexpr int kFallbackWidth = 600;
// An image not shown yet is guessed this high (the file icons' height).
constexpr int kIconGuess = 48;
// Documents kept beyond the rows near the view before they are dropped.
constexpr int kSpareDocuments = 64;
// Layouts in a row while estimates near the view are corrected.
constexpr int kMeasurePasses = 4;

// Images are read once per process (the same icons appear in every item).
const QImage& CachedImage(const QString& path) {
  static QHash<QString, QImage> cache;
  auto it = cache.constFind(path);
  if (it == cache.constEnd()) {
    QImageReader reader(path);
    it = cache.insert(path, reader.read());  // a GIF's first frame
  }
  return *it;
}

QImage ProgressImage(int percent) {
  QImage image(kProgressWidth, kProgressHeight, QImage::Format_ARGB32_Premultiplied);
  image.fill(QColor(0xD9, 0xDD, 0xE2));
  QPainter p(&image);
  p.fillRect(0, 0, kProgressWidth * std::clamp(percent, 0, 100) / 100, kProgressHeight,
             QColor(0x2F, 0x9B, 0xF0));
  return image;
}

// Inline images (emoticons, state marks) sit on the text's middle line.
// Returns the size shown.
QSize InsertImage(QTextDocument& doc, QTextCursor& cursor, const QString& path, int maxSide,
                  bool middle = false) {
  const QImage& image = CachedImage(path);
  doc.addResource(QTextDocument::ImageResource, QUrl(path), image);
  QTextImageFormat format;
  format.setName(path);
  if (middle) format.setVerticalAlignment(QTextCharFormat::AlignMiddle);
  QSize size = image.size();
  if (!image.isNull() && maxSide > 0) {
    if (size.width() > maxSide || size.height() > maxSide) {
      size.scale(maxSide, maxSide, Qt::KeepAspectRatio);
    }
    format.setWidth(size.width());
    format.setHeight(size.height());
  }
  cursor.insertImage(format);
  return size;
}

// Returns the size the object's image is shown at (invalid: none).
QSize InsertObject(QTextDocument& doc, QTextCursor& cursor, const QWidget* list,
                   const ChatObject& object) {
  QSize shown;
  if (!object.image.empty()) {
    shown = InsertImage(doc, cursor, ChatImagePath(list, object.image), object.maxSide);
  }
  QString caption = ToQ(object.caption);
  if (!caption.isEmpty()) {
    if (!object.image.empty()) cursor.insertText(QString(QChar::LineSeparator));
    cursor.insertText(caption.replace(u'\n', QChar::LineSeparator));
  }
  if (!object.stateImage.empty()) {
    cursor.insertText(QStringLiteral(" "));
    InsertImage(doc, cursor, ChatImagePath(list, object.stateImage), 16, true);
  }
  if (object.progress >= 0) {
    QString name = QStringLiteral("im-progress:%1").arg(object.progress);
    doc.addResource(QTextDocument::ImageResource, QUrl(name), ProgressImage(object.progress));
    cursor.insertText(QString(QChar::LineSeparator));
    QTextImageFormat format;
    format.setName(name);
    cursor.insertImage(format);
    cursor.insertText(QStringLiteral(" %1%").arg(object.progress));
  }
  return shown;
}

// The rich edit's inset: the item's own value, else the template's.
QMargins InsetOf(const ChatItem& item, const ChatTemplate* tpl) {
  if (item.inset) return *item.inset;
  return tpl && tpl->richEdit ? tpl->richEdit->contentsMargins() : QMargins();
}

// Each row in view is its template's stamp, bound to the row, with the
// item's content drawn where the stamp's rich edit shows its text.
class ChatDelegate : public QStyledItemDelegate {
 public:
  explicit ChatDelegate(ChatListView* view) : QStyledItemDelegate(view), view_(view) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    ChatItem* item = view_->items()->At(index.row());
    QWidget* stamp = view_->BindStamp(index.row(), option.rect.width());
    if (!item || !stamp) return;
    const ChatTemplate* tpl = item->tpl;
    // Rendered through a pixmap: render() straight into the viewport's
    // painter, inside the viewport's own paint, left the stamp's children
    // (header, bubble, picture) out in the module's window.
    const qreal ratio = view_->viewport()->devicePixelRatioF();
    QPixmap pixmap(stamp->size() * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    stamp->render(&pixmap, QPoint(), QRegion(), QWidget::DrawChildren);
    painter->drawPixmap(option.rect.topLeft(), pixmap);
    if (!tpl->richEdit) return;
    // The content sits inside the rich edit's inset (its viewport is not
    // laid out again while the stamp is hidden).
    QMargins inset = InsetOf(*item, tpl);
    QRect area = QRect(tpl->richEdit->mapTo(stamp, QPoint(0, 0)), tpl->richEdit->size())
                     .marginsRemoved(inset);
    QPoint at = option.rect.topLeft() + area.topLeft();
    QTextDocument* doc = view_->Document(*item);
    painter->save();
    painter->translate(at);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, tpl->richEdit->palette().color(QPalette::Text));
    context.clip = QRectF(0, 0, area.width(), area.height());
    painter->setClipRect(context.clip);
    doc->documentLayout()->draw(painter, context);
    painter->restore();
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    ChatItem* item = view_->items()->At(index.row());
    return QSize(option.rect.width(), item ? item->height : 0);
  }

 private:
  ChatListView* view_;
};

}  // namespace

namespace {

std::deque<ChatSlot>& SlotTable() {
  static std::deque<ChatSlot> table;
  return table;
}

}  // namespace

int ChatSlotOf(std::string_view control, std::string_view attribute) {
  std::deque<ChatSlot>& table = SlotTable();
  for (size_t i = 0; i < table.size(); ++i) {
    if (table[i].attribute == attribute && table[i].control == control) return static_cast<int>(i);
  }
  table.push_back(
      ChatSlot{std::string(control), std::string(attribute),
               QString::fromUtf8(control.data(), static_cast<qsizetype>(control.size()))});
  return static_cast<int>(table.size() - 1);
}

const ChatSlot& ChatSlotAt(int slot) {
  return SlotTable().at(static_cast<size_t>(slot));
}

const WString* ChatItem::Value(int slot) const {
  for (const ChatValue& held : values) {
    if (held.slot == slot) return &held.value;
  }
  return nullptr;
}

bool ChatItem::SetValue(int slot, const WString& value) {
  for (ChatValue& held : values) {
    if (held.slot != slot) continue;
    if (held.value == value) return false;
    held.value = value;
    return true;
  }
  values.push_back(ChatValue{slot, value});
  return true;
}

QString ItemText(const ChatItem& item) {
  QStringList blocks;
  for (const ChatBlock& block : item.blocks) {
    QString text;
    for (const ChatRun& run : block.runs) text += ToQ(run.text);
    if (block.isObject) text += ToQ(block.object.caption);
    blocks << text;
  }
  return blocks.join(u'\n');
}

QString ChatImagePath(const QWidget* list, const WString& image) {
  QString path = ToQ(image);
  if (QDir::isAbsolutePath(path)) return path;
  return QString::fromStdString(
      ResolveSkinPath(path.toStdString(), SkinFolderOf(list).toStdString()));
}

// ----- ChatModel ------------------------------------------------------------

int ChatModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant ChatModel::data(const QModelIndex& index, int role) const {
  ChatItem* item = At(index.row());
  if (!item) return {};
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
    static const int headerSlot = ChatSlotOf("List_Item_Edit", "text");
    const WString* headerValue = item->Value(headerSlot);
    QString header = headerValue ? ToQ(*headerValue) : QString();
    QString text = ItemText(*item);
    return header.isEmpty() ? text : header + u'\n' + text;
  }
  return {};
}

// Structural changes always go through a batch: its end resets the view
// once and keeps the reader's scroll position.
int ChatModel::Insert(int index, std::unique_ptr<ChatItem> item) {
  BeginBatch();
  int count = static_cast<int>(items_.size());
  if (index < 0 || index > count) index = count;
  uint64_t id = item->itemId;
  items_.insert(items_.begin() + index, std::move(item));
  if (index == count) {
    index_[id] = index;
  } else {
    index_.clear();
    for (int i = 0; i < static_cast<int>(items_.size()); ++i) {
      index_.try_emplace(items_[i]->itemId, i);
    }
  }
  batchReset_ = true;
  EndBatch();
  return index;
}

void ChatModel::Clear() {
  BeginBatch();
  items_.clear();
  index_.clear();
  batchReset_ = true;
  EndBatch();
}

int ChatModel::Find(uint64_t itemId) const {
  auto it = index_.find(itemId);
  return it == index_.end() ? -1 : it->second;
}

ChatItem* ChatModel::At(int row) const {
  if (row < 0 || row >= static_cast<int>(items_.size())) return nullptr;
  return items_[static_cast<size_t>(row)].get();
}

void ChatModel::Changed(int row, bool heightChanged) {
  if (batch_ > 0) {
    batchHeights_ = batchHeights_ || heightChanged;
    return;
  }
  QModelIndex at = index(row);
  emit dataChanged(at, at);
  if (heightChanged) emit heightsChanged();
}

void ChatModel::BeginBatch() {
  if (batch_++ == 0) batchReset_ = batchHeights_ = false;
}

void ChatModel::EndBatch() {
  if (batch_ == 0 || --batch_ > 0) return;
  if (batchReset_) {
    beginResetModel();
    endResetModel();
  } else if (batchHeights_) {
    emit heightsChanged();
  } else if (!items_.empty()) {
    emit dataChanged(index(0), index(static_cast<int>(items_.size()) - 1));
  }
}

// ----- ChatListView ---------------------------------------------------------

ChatListView::ChatListView(QWidget* parent) : QListView(parent), model_(new ChatModel) {
  model_->setParent(this);
  setModel(model_);
  setItemDelegate(new ChatDelegate(this));
  setUniformItemSizes(false);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setFrameShape(QFrame::NoFrame);
  setResizeMode(QListView::Adjust);
  // A rebuild keeps the reader where they were; the window scrolls on purpose.
  auto keep = std::make_shared<int>(0);
  connect(model_, &QAbstractItemModel::modelAboutToBeReset, this,
          [this, keep] { *keep = verticalScrollBar()->value(); });
  connect(model_, &QAbstractItemModel::modelReset, this, [this, keep] {
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(*keep);
  });
  connect(model_, &ChatModel::heightsChanged, this, [this] { doItemsLayout(); });
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { MeasureRowsInView(); });
}

const ChatTemplate* ChatListView::Template(std::string_view skinFile) {
  for (const ChatTemplate& held : templates_) {
    if (held.file == skinFile) return held.stamp ? &held : nullptr;
  }
  QWidget* stamp =
      LoadSkin(SkinFolderOf(this),
               QString::fromUtf8(skinFile.data(), static_cast<qsizetype>(skinFile.size())), this);
  ChatTemplate& tpl = templates_.emplace_back();
  tpl.file = std::string(skinFile);
  if (stamp) {
    stamp->setProperty("im_skinFolder", SkinFolderOf(this));
    stamp->setProperty("im_stamp", true);
    stamp->hide();
    stamp->ensurePolished();
    tpl.stamp = stamp;
    for (QWidget* w : stamp->findChildren<QWidget*>()) {
      w->ensurePolished();
      if (IsNamedControl(w)) tpl.controls.insert(w->objectName(), w);
    }
    tpl.richEdit =
        qobject_cast<QTextEdit*>(tpl.controls.value(QStringLiteral("List_Item_RichEdit")));
    tpl.container = tpl.controls.value(QStringLiteral("MsgContainer"));
    if (tpl.richEdit) {
      QFontMetrics metrics(tpl.richEdit->font());
      tpl.lineHeight = metrics.lineSpacing();
      tpl.wideAdvance = metrics.horizontalAdvance(QChar(0x4E2D));
      tpl.narrowAdvance = metrics.averageCharWidth();
    }
  }
  return tpl.stamp ? &tpl : nullptr;
}

QWidget* ChatListView::BindStamp(int row, int width) {
  ChatItem* item = model_->At(row);
  const ChatTemplate* tpl = item ? item->tpl : nullptr;
  if (!tpl) return nullptr;
  for (const ChatValue& held : item->values) {
    const ChatSlot& slot = ChatSlotAt(held.slot);
    QWidget* target = tpl->controls.value(slot.controlName);
    if (!target) continue;
    Control control = MakeControl(target);
    if (slot.attribute != "text" && control.GetAttribute(slot.attribute) == held.value) continue;
    control.SetAttribute(slot.attribute, held.value);
  }
  if (tpl->richEdit) {
    MakeControl(tpl->richEdit).SetUserData(QString::number(item->itemId).toStdU16String());
  }
  QSize size(width, item->height);
  if (tpl->stamp->size() != size) tpl->stamp->resize(size);
  if (tpl->stamp->layout()) tpl->stamp->layout()->activate();
  return tpl->stamp;
}

QWidget* ChatListView::ControlAt(QPoint viewportPos) {
  return StampControlAt(*this, viewportPos);
}

int ChatListView::WrapWidth(const ChatItem& item, const ChatTemplate& tpl) const {
  QMargins inset = InsetOf(item, &tpl);
  int width = 0;
  if (tpl.container && tpl.container->maximumWidth() < QWIDGETSIZE_MAX) {
    width = tpl.container->maximumWidth();
  } else {
    int listWidth = viewport()->width() > 100 ? viewport()->width() : kFallbackWidth;
    QMargins margins = tpl.stamp->layout() ? tpl.stamp->layout()->contentsMargins() : QMargins();
    width = listWidth - margins.left() - margins.right();
  }
  return std::max(40, width - inset.left() - inset.right());
}

QTextDocument* ChatListView::Document(const ChatItem& item) {
  if (item.doc) return item.doc.get();
  const ChatTemplate* tpl = item.tpl;
  auto doc = std::make_unique<QTextDocument>();
  doc->setDocumentMargin(0);
  if (tpl && tpl->richEdit) doc->setDefaultFont(tpl->richEdit->font());
  if (tpl && !tpl->container) {
    QTextOption centred = doc->defaultTextOption();
    centred.setAlignment(Qt::AlignHCenter);
    doc->setDefaultTextOption(centred);
  }
  QTextCursor cursor(doc.get());
  bool first = true;
  for (const ChatBlock& block : item.blocks) {
    if (!first) cursor.insertBlock();
    first = false;
    if (block.isObject) {
      QSize shown = InsertObject(*doc, cursor, this, block.object);
      if (shown.isValid()) imageSizes_.insert(ToQ(block.object.image), shown);
      continue;
    }
    for (const ChatRun& run : block.runs) {
      if (run.image.empty()) {
        cursor.insertText(ToQ(run.text));
      } else {
        InsertImage(*doc, cursor, ChatImagePath(this, run.image), kEmoticonSide, true);
      }
    }
  }
  if (tpl) doc->setTextWidth(WrapWidth(item, *tpl));
  item.doc = std::move(doc);
  ++documentsMade_;
  return item.doc.get();
}

QSize ChatListView::ContentSize(const ChatItem& item) {
  QTextDocument* doc = Document(item);
  QMargins inset = InsetOf(item, item.tpl);
  int width = static_cast<int>(std::ceil(doc->idealWidth())) + inset.left() + inset.right();
  int height = static_cast<int>(std::ceil(doc->size().height())) + inset.top() + inset.bottom();
  return QSize(width, height);
}

// Text lines by their estimated width; objects by their image (as shown
// before, else guessed), caption lines and progress bar.
int ChatListView::EstimateContentHeight(const ChatItem& item, const ChatTemplate& tpl,
                                        int wrapWidth) const {
  int height = 0;
  for (const ChatBlock& block : item.blocks) {
    if (block.isObject) {
      const ChatObject& object = block.object;
      int lines = object.caption.empty() ? 0 : 1;
      for (char16_t c : object.caption) lines += c == u'\n' ? 1 : 0;
      if (!object.image.empty()) {
        QSize shown = imageSizes_.value(ToQ(object.image));
        height += shown.isValid()      ? shown.height()
                  : object.maxSide > 0 ? object.maxSide
                                       : kIconGuess;
      }
      height += lines * tpl.lineHeight;
      if (object.progress >= 0) height += tpl.lineHeight;
      continue;
    }
    int lineHeight = tpl.lineHeight;
    int lines = 0;
    int width = 0;  // of the paragraph being estimated
    for (const ChatRun& run : block.runs) {
      if (!run.image.empty()) {
        width += kEmoticonSide;
        lineHeight = std::max(lineHeight, kEmoticonSide + 2);
        continue;
      }
      for (char16_t c : run.text) {
        if (c == u'\n') {
          lines += std::max(1, (width + wrapWidth - 1) / wrapWidth);
          width = 0;
        } else {
          width += c >= 0x2E80 ? tpl.wideAdvance : tpl.narrowAdvance;
        }
      }
    }
    lines += std::max(1, (width + wrapWidth - 1) / wrapWidth);
    height += lines * lineHeight;
  }
  return height;
}

bool ChatListView::Fit(ChatItem& item, bool measure) {
  if (!item.fit) return false;
  const ChatTemplate* tpl = item.tpl;
  const ChatFit& fit = *item.fit;
  const int wrapWidth = WrapWidth(item, *tpl);
  if (item.measured && item.measuredWidth == wrapWidth) return false;
  const int before = item.height;
  if (measure) {
    if (item.doc && item.measuredWidth != wrapWidth) item.doc.reset();
    QSize content = ContentSize(item);
    static const int editHeight = ChatSlotOf("List_Item_RichEdit", "height");
    static const int editWidth = ChatSlotOf("List_Item_RichEdit", "width");
    static const int bubbleHeight = ChatSlotOf("MsgContainer", "height");
    const auto number = [](int value) { return platform::W(std::to_string(value)); };
    item.SetValue(editHeight, number(content.height() + fit.editExtra));
    if (fit.bubble) {
      item.SetValue(editWidth, number(content.width()));
      item.SetValue(bubbleHeight, number(content.height() + fit.editExtra));
    }
    item.height = content.height() + fit.itemExtra;
    item.measured = true;
    item.measuredWidth = wrapWidth;
  } else {
    QMargins inset = InsetOf(item, tpl);
    item.height =
        EstimateContentHeight(item, *tpl, wrapWidth) + inset.top() + inset.bottom() + fit.itemExtra;
  }
  return item.height != before;
}

void ChatListView::doItemsLayout() {
  const int keep = verticalScrollBar()->value();
  QListView::doItemsLayout();
  verticalScrollBar()->setValue(keep);
  MeasureRowsInView();
}

int ChatListView::FirstRowReaching(int y) const {
  int low = 0;
  int high = model_->rowCount();
  while (low < high) {
    const int mid = (low + high) / 2;
    if (visualRect(model_->index(mid)).bottom() < y) {
      low = mid + 1;
    } else {
      high = mid;
    }
  }
  return low;
}

void ChatListView::MeasureRowsInView() {
  const int count = model_->rowCount();
  if (measuring_ || count == 0) return;
  measuring_ = true;
  QScrollBar* bar = verticalScrollBar();
  const int height = viewport()->height();
  const int reach = height / 2;  // rows this near are measured before they show
  for (int pass = 0; pass < kMeasurePasses; ++pass) {
    const bool atBottom = bar->maximum() > 0 && bar->value() >= bar->maximum();
    const int anchor = std::min(FirstRowReaching(0), count - 1);
    const int anchorOffset = rectForIndex(model_->index(anchor)).top() - bar->value();
    const int first = FirstRowReaching(-reach);
    int last = first;
    bool changed = false;
    for (int row = first; row < count; ++row) {
      if (visualRect(model_->index(row)).top() > height + reach) break;
      last = row;
      changed = Fit(*model_->At(row), true) || changed;
    }
    KeepDocumentsNearView(first, last);
    if (!changed) break;
    QListView::doItemsLayout();
    bar->setValue(atBottom ? bar->maximum()
                           : rectForIndex(model_->index(anchor)).top() - anchorOffset);
  }
  measuring_ = false;
}

void ChatListView::KeepDocumentsNearView(int first, int last) {
  if (documentsMade_ <= kSpareDocuments) return;
  const int count = model_->rowCount();
  for (int row = 0; row < count; ++row) {
    if (row < first || row > last) model_->At(row)->doc.reset();
  }
  documentsMade_ = 0;
}

void ChatListView::mouseReleaseEvent(QMouseEvent* event) {
  QListView::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton) return;
  QWidget* control = ControlAt(event->position().toPoint());
  if (control && IsNamedControl(control)) emit controlClicked(control);
}

void ChatListView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy) && currentIndex().isValid()) {
    ChatItem* item = model_->At(currentIndex().row());
    if (item) {
      QApplication::clipboard()->setText(ItemText(*item));
      return;
    }
  }
  QListView::keyPressEvent(event);
}

ChatListView* ChatListOfViewport(QWidget* widget) {
  auto* view = widget ? qobject_cast<ChatListView*>(widget->parentWidget()) : nullptr;
  return view && view->viewport() == widget ? view : nullptr;
}

}  // namespace ui::qt

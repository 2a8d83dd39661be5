#include "ui/kit/control.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPixmapCache>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTextEdit>

#include "platform/trace.h"
#include "ui/kit/attributes.h"
#include "ui/kit/qt/chat_list_view.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/im_list.h"
#include "ui/kit/qt/image_layer.h"
#include "ui/kit/qt/widget_style.h"
#include "ui/kit/resources.h"

namespace ui {
namespace qt {

bool IsNamedControl(const QWidget* widget) {
  if (!widget || widget->property("im_host").toBool()) return false;
  const QString& name = widget->objectName();
  return !name.isEmpty() && !name.startsWith(QLatin1String("qt_"));
}

QWidget* NearestControl(QWidget* widget) {
  for (QWidget* w = widget; w && !w->property("im_host").toBool(); w = w->parentWidget()) {
    if (IsNamedControl(w)) return w;
  }
  return nullptr;
}

}  // namespace qt

namespace {

QString ToQ(const WString& s) {
  return QString::fromUtf16(s.data(), static_cast<qsizetype>(s.size()));
}
WString FromQ(const QString& s) {
  return WString(reinterpret_cast<const char16_t*>(s.utf16()), s.size());
}

QStackedWidget* StackOf(QWidget* w) {
  if (auto* stack = qobject_cast<QStackedWidget*>(w)) return stack;
  if (auto* tabs = qobject_cast<QTabWidget*>(w)) return tabs->findChild<QStackedWidget*>();
  return nullptr;
}

// Where relative image paths of a control start from: its skin's folder.
std::string SkinFolderOf(QWidget* w) {
  for (; w; w = w->parentWidget()) {
    QVariant folder = w->property("im_skinFolder");
    if (folder.isValid()) return folder.toString().toStdString();
  }
  return ResourcePath("DuiLibRes/skin");
}

bool ApplyImage(QWidget* w, const std::string& slot, const std::string& value) {
  std::optional<ImageAttribute> image = ParseImageAttribute(value);
  if (!image) {
    platform::Trace("SetAttribute: bad %s value \"%s\" on %s", slot.c_str(), value.c_str(),
                    w->objectName().toUtf8().constData());
    return false;
  }
  qt::ImageLayer::Image layerImage;
  if (!image->file.empty()) {
    QString path = QString::fromStdString(ResolveSkinPath(image->file, SkinFolderOf(w)));
    // Row lists apply their images whenever a row is drawn: load each file once.
    if (!QPixmapCache::find(path, &layerImage.pixmap)) {
      layerImage.pixmap = QPixmap(path);
      if (!layerImage.pixmap.isNull()) QPixmapCache::insert(path, layerImage.pixmap);
    }
    if (layerImage.pixmap.isNull()) {
      platform::Trace("SetAttribute: cannot load image %s", path.toUtf8().constData());
      return false;
    }
    auto toQRect = [](const Rect& r) { return QRect(r.left, r.top, r.Width(), r.Height()); };
    if (image->source && image->source->Width() > 0 && image->source->Height() > 0) {
      layerImage.source = toQRect(*image->source);
    }
    if (image->dest) layerImage.dest = toQRect(*image->dest);
  }
  qt::ImageLayer::Of(w)->SetImage(slot, layerImage);
  return true;
}

}  // namespace

Control::Control(std::shared_ptr<ControlRef> ref) : ref_(std::move(ref)) {}

bool Control::IsValid() const {
  return qt::WidgetOf(*this) != nullptr;
}

bool Control::operator==(const Control& other) const {
  return qt::WidgetOf(*this) == qt::WidgetOf(other);
}

std::string Control::GetName() const {
  QWidget* w = qt::WidgetOf(*this);
  return w ? w->objectName().toStdString() : std::string();
}

void Control::SetName(std::string_view name) {
  if (QWidget* w = qt::WidgetOf(*this)) {
    w->setObjectName(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
  }
}

WString Control::GetText() const {
  QWidget* w = qt::WidgetOf(*this);
  if (auto* label = qobject_cast<QLabel*>(w)) return FromQ(label->text());
  if (auto* button = qobject_cast<QAbstractButton*>(w)) return FromQ(button->text());
  if (auto* edit = qobject_cast<QLineEdit*>(w)) return FromQ(edit->text());
  if (auto* rich = qobject_cast<QTextEdit*>(w)) return FromQ(rich->toPlainText());
  return {};
}

void Control::SetText(const WString& text) {
  QWidget* w = qt::WidgetOf(*this);
  if (auto* label = qobject_cast<QLabel*>(w)) {
    // Names and messages come from other users: never read them as markup.
    label->setTextFormat(Qt::PlainText);
    label->setText(ToQ(text));
  } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
    button->setText(ToQ(text));
  } else if (auto* edit = qobject_cast<QLineEdit*>(w)) {
    edit->setText(ToQ(text));
  } else if (auto* rich = qobject_cast<QTextEdit*>(w)) {
    QSignalBlocker quiet(rich);  // only the user's typing is a "textchanged"
    rich->setPlainText(ToQ(text));
  }
}

WString Control::GetToolTip() const {
  QWidget* w = qt::WidgetOf(*this);
  return w ? FromQ(w->toolTip()) : WString();
}

void Control::SetToolTip(const WString& text) {
  if (QWidget* w = qt::WidgetOf(*this)) w->setToolTip(ToQ(text));
}

bool Control::IsVisible() const {
  QWidget* w = qt::WidgetOf(*this);
  return w && !w->isHidden();
}

void Control::SetVisible(bool visible) {
  if (QWidget* w = qt::WidgetOf(*this)) w->setVisible(visible);
}

bool Control::IsEnabled() const {
  QWidget* w = qt::WidgetOf(*this);
  return w && w->isEnabled();
}

void Control::SetEnabled(bool enabled) {
  if (QWidget* w = qt::WidgetOf(*this)) w->setEnabled(enabled);
}

void Control::SetFocus() {
  if (QWidget* w = qt::WidgetOf(*this)) w->setFocus(Qt::OtherFocusReason);
}

bool Control::IsFocused() const {
  QWidget* w = qt::WidgetOf(*this);
  return w && w->hasFocus();
}

WString Control::GetUserData() const {
  QWidget* w = qt::WidgetOf(*this);
  return w ? FromQ(w->property("im_userdata").toString()) : WString();
}

void Control::SetUserData(const WString& data) {
  if (QWidget* w = qt::WidgetOf(*this)) w->setProperty("im_userdata", ToQ(data));
}

bool Control::SetAttribute(std::string_view name, std::string_view utf8Value) {
  return SetAttribute(name, platform::Utf8ToUtf16(utf8Value));
}

bool Control::SetAttribute(std::string_view name, const WString& value) {
  QWidget* w = qt::WidgetOf(*this);
  if (!w) return false;
  const std::string key(name);
  const std::string utf8 = platform::Utf16ToUtf8(value);
  auto bad = [&] {
    platform::Trace("SetAttribute: bad %s value \"%s\" on %s", key.c_str(), utf8.c_str(),
                    w->objectName().toUtf8().constData());
    return false;
  };
  bool applied = true;
  if (key == "text") {
    SetText(value);
  } else if (key == "name") {
    // Rows drawn from one template can still tell their kinds apart by name.
    SetName(utf8);
  } else if (key == "accessiblename") {
    w->setAccessibleName(ToQ(value));
  } else if (key == "tooltip") {
    SetToolTip(value);
  } else if (key == "userdata") {
    SetUserData(value);
  } else if (key == "visible" || key == "enabled" || key == "mouse") {
    std::optional<bool> on = ParseBool(utf8);
    if (!on) return bad();
    if (key == "visible") SetVisible(*on);
    if (key == "enabled") SetEnabled(*on);
    if (key == "mouse") w->setAttribute(Qt::WA_TransparentForMouseEvents, !*on);
  } else if (key == "bkcolor" || key == "textcolor") {
    std::optional<std::uint32_t> argb = ParseColor(utf8);
    if (!argb) return bad();
    qt::SetControlColor(w, key == "bkcolor" ? "im_bkcolor" : "im_textcolor",
                        QColor::fromRgba(*argb));
  } else if (key == "normalimage" || key == "hotimage" || key == "pushedimage" ||
             key == "bkimage") {
    applied = ApplyImage(w, key, utf8);
  } else if (key == "width" || key == "height") {
    bool ok = false;
    int pixels = QString::fromStdString(utf8).toInt(&ok);
    if (!ok || pixels < 0) return bad();
    key == "width" ? SetFixedWidth(pixels) : SetFixedHeight(pixels);
  } else if (key == "inset") {
    std::optional<Rect> r = ParseRect(utf8);
    if (!r) return bad();
    w->setContentsMargins(r->left, r->top, r->right, r->bottom);
  } else {
    platform::Trace("SetAttribute: unknown attribute %s on %s", key.c_str(),
                    w->objectName().toUtf8().constData());
    return false;
  }
  if (applied) w->setProperty(("im_attr_" + key).c_str(), ToQ(value));
  return applied;
}

WString Control::GetAttribute(std::string_view name) const {
  QWidget* w = qt::WidgetOf(*this);
  if (!w) return {};
  return FromQ(w->property(("im_attr_" + std::string(name)).c_str()).toString());
}

void Control::SetFixedHeight(int height) {
  if (QWidget* w = qt::WidgetOf(*this)) w->setFixedHeight(height);
}

void Control::SetFixedWidth(int width) {
  if (QWidget* w = qt::WidgetOf(*this)) w->setFixedWidth(width);
}

int Control::GetFixedHeight() const {
  QWidget* w = qt::WidgetOf(*this);
  if (!w || w->minimumHeight() != w->maximumHeight()) return 0;
  return w->minimumHeight();
}

Rect Control::GetPos() const {
  QWidget* w = qt::WidgetOf(*this);
  if (!w) return {};
  QPoint topLeft = w->mapTo(w->window(), QPoint(0, 0));
  return Rect{topLeft.x(), topLeft.y(), topLeft.x() + w->width(), topLeft.y() + w->height()};
}

Control Control::GetParent() const {
  QWidget* w = qt::WidgetOf(*this);
  return w ? qt::MakeControl(qt::NearestControl(w->parentWidget())) : Control();
}

bool Control::IsInside(const Control& ancestor) const {
  QWidget* w = qt::WidgetOf(*this);
  QWidget* a = qt::WidgetOf(ancestor);
  return w && a && (w == a || a->isAncestorOf(w));
}

Control Control::FindSubControl(std::string_view name) const {
  QWidget* w = qt::WidgetOf(*this);
  if (!w) return {};
  QString qname = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  if (w->objectName() == qname) return *this;
  return qt::MakeControl(w->findChild<QWidget*>(qname));
}

bool Control::IsSelected() const {
  auto* button = qobject_cast<QAbstractButton*>(qt::WidgetOf(*this));
  return button && button->isChecked();
}

void Control::Selected(bool selected, bool sendEvent) {
  auto* button = qobject_cast<QAbstractButton*>(qt::WidgetOf(*this));
  if (!button || !button->isCheckable() || button->isChecked() == selected) return;
  std::optional<QSignalBlocker> quiet;
  if (!sendEvent) quiet.emplace(button);
  // An exclusive group refuses to uncheck its checked button; the window
  // code decides the selection itself.
  bool exclusive = button->autoExclusive();
  if (!selected) button->setAutoExclusive(false);
  button->setChecked(selected);
  button->setAutoExclusive(exclusive);
}

bool Control::SelectItem(int index) {
  QStackedWidget* stack = StackOf(qt::WidgetOf(*this));
  if (!stack || index < 0 || index >= stack->count()) return false;
  stack->setCurrentIndex(index);
  return true;
}

int Control::GetCurSel() const {
  QStackedWidget* stack = StackOf(qt::WidgetOf(*this));
  return stack ? stack->currentIndex() : -1;
}

int Control::GetPageCount() const {
  QStackedWidget* stack = StackOf(qt::WidgetOf(*this));
  return stack ? stack->count() : 0;
}

bool Control::Add(const Control& item) {
  return AddAt(item, -1);
}

bool Control::AddAt(const Control& item, int index) {
  auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this));
  return list && list->AddAt(qt::WidgetOf(item), index);
}

bool Control::Remove(const Control& item) {
  auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this));
  return list && list->Remove(qt::WidgetOf(item));
}

void Control::RemoveAll() {
  if (auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this))) list->RemoveAll();
  if (auto* chat = qobject_cast<qt::ChatListView*>(qt::WidgetOf(*this))) chat->items()->Clear();
}

int Control::GetCount() const {
  if (auto* chat = qobject_cast<qt::ChatListView*>(qt::WidgetOf(*this))) {
    return chat->items()->rowCount();
  }
  auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this));
  return list ? list->Count() : 0;
}

Control Control::GetItemAt(int index) const {
  auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this));
  return list ? qt::MakeControl(list->ItemAt(index)) : Control();
}

int Control::GetItemIndex(const Control& item) const {
  auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this));
  return list ? list->IndexOf(qt::WidgetOf(item)) : -1;
}

void Control::SetChildPadding(int pixels) {
  if (auto* list = qobject_cast<qt::ImList*>(qt::WidgetOf(*this))) list->SetSpacing(pixels);
  if (auto* chat = qobject_cast<qt::ChatListView*>(qt::WidgetOf(*this)))
    chat->setSpacing(pixels / 2);
}

int Control::GetScrollPos() const {
  auto* area = qobject_cast<QAbstractScrollArea*>(qt::WidgetOf(*this));
  return area ? area->verticalScrollBar()->value() : 0;
}

int Control::GetScrollRange() const {
  auto* area = qobject_cast<QAbstractScrollArea*>(qt::WidgetOf(*this));
  return area ? area->verticalScrollBar()->maximum() : 0;
}

void Control::SetScrollPos(int pos) {
  if (auto* area = qobject_cast<QAbstractScrollArea*>(qt::WidgetOf(*this))) {
    area->verticalScrollBar()->setValue(pos);
  }
}

void Control::SetSelAll() {
  QWidget* w = qt::WidgetOf(*this);
  if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
  if (auto* rich = qobject_cast<QTextEdit*>(w)) rich->selectAll();
}

void Control::SetReadOnly(bool readOnly) {
  QWidget* w = qt::WidgetOf(*this);
  if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->setReadOnly(readOnly);
  if (auto* rich = qobject_cast<QTextEdit*>(w)) rich->setReadOnly(readOnly);
}

void Control::PasteText() {
  QWidget* w = qt::WidgetOf(*this);
  QString text = QGuiApplication::clipboard()->text();
  if (auto* edit = qobject_cast<QLineEdit*>(w); edit && !edit->isReadOnly()) edit->insert(text);
  if (auto* rich = qobject_cast<QTextEdit*>(w); rich && !rich->isReadOnly()) {
    rich->insertPlainText(text);
  }
}

void Control::Cut() {
  QWidget* w = qt::WidgetOf(*this);
  if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->cut();
  if (auto* rich = qobject_cast<QTextEdit*>(w)) rich->cut();
}

void Control::Delete() {
  delete qt::WidgetOf(*this);
}

}  // namespace ui

#include "ui/kit/qt/window_host.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <vector>

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSocketNotifier>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "platform/trace.h"
#include "ui/kit/qt/chat_list_view.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/im_list.h"
#include "ui/kit/qt/im_menu_element.h"
#include "ui/kit/qt/row_list_view.h"

namespace ui {
namespace {

// The key codes window code compares with: letters and digits as their
// characters, Return and Escape as their codes, anything else the toolkit's.
platform::WPARAM KeyCode(int key) {
  if (key == Qt::Key_Return || key == Qt::Key_Enter) return kVkReturn;
  if (key == Qt::Key_Escape) return kVkEscape;
  return static_cast<platform::WPARAM>(key);
}

platform::LPARAM Modifiers(Qt::KeyboardModifiers m) {
  return (m & Qt::ControlModifier ? kKeyCtrl : 0) | (m & Qt::ShiftModifier ? kKeyShift : 0) |
         (m & Qt::AltModifier ? kKeyAlt : 0);
}

// What a screen reader calls a control the skin gave no name: an icon
// button the words of its tooltip, an edit its placeholder, a list or rich
// edit its control name. Buttons and labels with text are read by their text.
void NameForScreenReaders(QWidget* w) {
  if (!qt::IsNamedControl(w) || !w->accessibleName().isEmpty()) return;
  auto* button = qobject_cast<QAbstractButton*>(w);
  auto* edit = qobject_cast<QLineEdit*>(w);
  if (!w->toolTip().isEmpty()) {
    w->setAccessibleName(w->toolTip());
  } else if (edit && !edit->placeholderText().isEmpty()) {
    w->setAccessibleName(edit->placeholderText());
  } else if ((button && button->text().isEmpty() && !button->icon().isNull()) || edit ||
             qobject_cast<QAbstractScrollArea*>(w)) {
    w->setAccessibleName(w->objectName());
  }
}

// Mouse events bubble up to the parents; only the deepest widget acts.
bool IsDeepest(QWidget* widget, QPointF pos) {
  return widget->childAt(pos.toPoint()) == nullptr;
}

}  // namespace

WindowHost::Mailbox::Mailbox() : wakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wakeFd < 0) platform::Trace("WindowHost: no eventfd, posted messages cannot wake the window");
}

WindowHost::Mailbox::~Mailbox() {
  if (wakeFd >= 0) ::close(wakeFd);
}

void WindowHost::Mailbox::Ring() const {
  const uint64_t one = 1;
  // Only a full counter (never reached) makes this fail; the window drains
  // everything queued whenever it wakes.
  [[maybe_unused]] ssize_t n = ::write(wakeFd, &one, sizeof one);
}

void WindowHost::Mailbox::Silence() const {
  uint64_t count = 0;
  [[maybe_unused]] ssize_t n = ::read(wakeFd, &count, sizeof count);
}

class WindowHost::BusyScope {
 public:
  explicit BusyScope(WindowHost* host) : host_(host) { ++host_->busy_; }
  ~BusyScope() { --host_->busy_; }

 private:
  WindowHost* host_;
};

WindowHost::WindowHost(WindowImplBase* window, QWidget* ownerHost, WindowStyle style)
    : QDialog(ownerHost),
      window_(window),
      orphanage_(new QWidget(this)),
      mailbox_(std::make_shared<Mailbox>()) {
  setProperty("im_host", true);
  Qt::WindowFlags flags = Qt::FramelessWindowHint;
  flags |= style == WindowStyle::kPopupTool ? Qt::Tool : Qt::Window;
  setWindowFlags(flags);
  orphanage_->hide();
  wakeNotifier_ = new QSocketNotifier(mailbox_->wakeFd, QSocketNotifier::Read, this);
  connect(wakeNotifier_, &QSocketNotifier::activated, this, [this] {
    mailbox_->Silence();
    Drain();
  });
  handle_ = platform::RegisterWindow([mailbox = mailbox_](const platform::WindowMessage& m) {
    std::lock_guard lock(mailbox->mutex);
    mailbox->queue.push_back(m);
    if (!mailbox->wakePending) {
      mailbox->wakePending = true;
      mailbox->Ring();
    }
  });
}

WindowHost::~WindowHost() {
  platform::UnregisterWindow(handle_);
  // Deleted under the window, with its owner: the window is gone all the
  // same, so a self-deleting dialog still gets its final message.
  if (WindowImplBase* window = window_) {
    window_ = nullptr;
    window->host_ = nullptr;
    window->OnFinalMessage();
  }
}

bool WindowHost::Attach(QWidget* root) {
  root_ = root;
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(root);
  resize(root->size());
  Wire(root);
  return true;
}

void WindowHost::Wire(QWidget* root) {
  QList<QWidget*> widgets = root->findChildren<QWidget*>();
  widgets.prepend(root);
  for (QWidget* w : widgets) {
    if (w->property("im_wired").toBool()) continue;
    w->setProperty("im_wired", true);
    w->installEventFilter(this);
    NameForScreenReaders(w);
    if (auto* push = qobject_cast<QPushButton*>(w)) {
      push->setAutoDefault(false);  // Enter does not press buttons behind the user's back
      push->setDefault(false);
    }
    if (auto* element = qobject_cast<qt::ImMenuElement*>(w)) {
      connect(element, &QAbstractButton::clicked, this,
              [this, element] { SendNotify(element, kNotifyItemClick); });
    } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
      connect(button, &QAbstractButton::clicked, this,
              [this, button] { SendNotify(button, kNotifyClick); });
      connect(button, &QAbstractButton::toggled, this, [this, button] {
        if (button->isCheckable()) SendNotify(button, kNotifySelectChanged);
      });
    } else if (auto* edit = qobject_cast<QLineEdit*>(w)) {
      connect(edit, &QLineEdit::textEdited, this,
              [this, edit] { SendNotify(edit, kNotifyTextChanged); });
      connect(edit, &QLineEdit::returnPressed, this,
              [this, edit] { SendNotify(edit, kNotifyReturn); });
    } else if (auto* rich = qobject_cast<QTextEdit*>(w)) {
      connect(rich, &QTextEdit::textChanged, this, [this, rich] {
        if (!rich->isReadOnly()) SendNotify(rich, kNotifyTextChanged);
      });
    } else if (auto* list = qobject_cast<qt::ImList*>(w)) {
      connect(list, &qt::ImList::itemClicked, this,
              [this](QWidget* item) { SendNotify(item, kNotifyItemClick); });
    } else if (auto* rows = qobject_cast<qt::RowListView*>(w)) {
      connect(rows, &qt::RowListView::itemClicked, this,
              [this](QWidget* item) { SendNotify(item, kNotifyItemClick); });
      connect(rows, &qt::RowListView::controlClicked, this,
              [this](QWidget* control) { SendNotify(control, kNotifyClick); });
    } else if (auto* chat = qobject_cast<qt::ChatListView*>(w)) {
      connect(chat, &qt::ChatListView::controlClicked, this,
              [this](QWidget* control) { SendNotify(control, kNotifyClick); });
    }
  }
}

void WindowHost::SendNotify(QWidget* sender, std::string_view type, QPoint windowPos,
                            platform::WPARAM wParam, platform::LPARAM lParam) {
  if (!window_) return;
  BusyScope busy(this);
  TNotifyUI msg;
  msg.sType = std::string(type);
  msg.pSender = qt::MakeControl(sender);
  msg.ptMouse = Point{windowPos.x(), windowPos.y()};
  msg.wParam = wParam;
  msg.lParam = lParam;
  window_->Notify(msg);
}

LRESULT WindowHost::Deliver(unsigned msg, platform::WPARAM wParam, platform::LPARAM lParam) {
  if (!window_) return 0;
  BusyScope busy(this);
  return window_->HandleMessage(msg, wParam, lParam);
}

void WindowHost::SetAcceptFiles(bool accept) {
  acceptFiles_ = accept;
  setAcceptDrops(accept);
}

bool WindowHost::TakeFileDrag(QWidget* target, QDropEvent* event) {
  if (!acceptFiles_ || !window_ || shuttingDown_) return false;
  std::vector<WString> paths;
  for (const QUrl& url : event->mimeData()->urls()) {
    if (!url.isLocalFile()) continue;
    QString path = url.toLocalFile();
    paths.emplace_back(reinterpret_cast<const char16_t*>(path.utf16()),
                       static_cast<size_t>(path.size()));
  }
  if (paths.empty()) return false;
  event->acceptProposedAction();
  if (event->type() == QEvent::Drop) {
    QPoint p = target->mapTo(this, event->position().toPoint());
    Deliver(kWmDropFiles, reinterpret_cast<platform::WPARAM>(&paths), MakeLParam(p.x(), p.y()));
  }
  return true;
}

void WindowHost::dragEnterEvent(QDragEnterEvent* event) {
  if (!TakeFileDrag(this, event)) QDialog::dragEnterEvent(event);
}

void WindowHost::dragMoveEvent(QDragMoveEvent* event) {
  if (!TakeFileDrag(this, event)) QDialog::dragMoveEvent(event);
}

void WindowHost::dropEvent(QDropEvent* event) {
  if (!TakeFileDrag(this, event)) QDialog::dropEvent(event);
}

void WindowHost::SetTimer(unsigned id, unsigned milliseconds) {
  if (shuttingDown_) return;
  QTimer*& timer = timers_[id];
  if (!timer) {
    timer = new QTimer(this);
    timer->setSingleShot(true);
    // Coarse timers fire up to 5% early; scrolling after a relayout must not.
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, [this, id] { Deliver(kWmTimer, id, 0); });
  }
  timer->start(static_cast<int>(milliseconds));
}

void WindowHost::KillTimer(unsigned id) {
  if (auto it = timers_.find(id); it != timers_.end()) it->second->stop();
}

bool WindowHost::IsTimerPending(unsigned id) const {
  auto it = timers_.find(id);
  return it != timers_.end() && it->second->isActive();
}

void WindowHost::Shutdown() {
  shuttingDown_ = true;
  platform::UnregisterWindow(handle_);
  for (auto& [id, timer] : timers_) timer->stop();
  Drain(true);
}

void WindowHost::Drain(bool everything) {
  // Only what was queued when the drain began: a sender that keeps posting
  // must not keep the window thread from its other events.
  size_t budget;
  {
    std::lock_guard lock(mailbox_->mutex);
    budget = everything ? mailbox_->queue.size() + 1 : mailbox_->queue.size();
  }
  for (;;) {
    platform::WindowMessage m;
    {
      std::lock_guard lock(mailbox_->mutex);
      if (mailbox_->queue.empty() || !window_) {
        mailbox_->wakePending = false;
        return;
      }
      if (budget == 0 && !everything) {
        mailbox_->Ring();  // the rest comes next round
        return;
      }
      m = mailbox_->queue.front();
      mailbox_->queue.pop_front();
    }
    if (budget > 0) --budget;
    Deliver(m.msg, m.wParam, m.lParam);
  }
}

void WindowHost::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && !isActiveWindow() && window_ && !shuttingDown_) {
    Deliver(kWmKillFocus, 0, 0);
  }
}

void WindowHost::closeEvent(QCloseEvent* event) {
  // A close from outside (the system, QWidget::close) goes the window's way:
  // the window decides whether it is destroyed or only hidden.
  if (!window_ || shuttingDown_) {
    event->accept();  // our own closing, on its way out
    return;
  }
  event->ignore();
  Deliver(kWmClose, 0, 0);
}

void WindowHost::reject() {
  if (window_ && !shuttingDown_) window_->Close(2);
}

void WindowHost::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  if (window_ && !shuttingDown_) Deliver(kWmSize, 0, MakeLParam(width(), height()));
}

bool WindowHost::eventFilter(QObject* watched, QEvent* event) {
  auto* widget = qobject_cast<QWidget*>(watched);
  if (!widget || !window_ || shuttingDown_) return false;
  BusyScope busy(this);
  return FilterInput(widget, event);
}

bool WindowHost::FilterInput(QWidget* widget, QEvent* event) {
  if (frameDrag_.Filter(widget, event)) return true;
  switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      if (QWidget* control = qt::NearestControl(widget)) {
        SendNotify(control, event->type() == QEvent::FocusIn ? kNotifySetFocus : kNotifyKillFocus);
      }
      return false;
    case QEvent::MouseButtonRelease: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() != Qt::RightButton || !IsDeepest(widget, mouse->position())) return false;
      SendNotify(qt::ControlUnder(widget, mouse->position().toPoint()), kNotifyRButtonUp,
                 widget->mapTo(this, mouse->position().toPoint()));
      return true;
    }
    case QEvent::MouseButtonDblClick: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() != Qt::LeftButton || !IsDeepest(widget, mouse->position())) return false;
      QPoint p = widget->mapTo(this, mouse->position().toPoint());
      return Deliver(kWmLButtonDblClk, 0, MakeLParam(p.x(), p.y())) != 0;
    }
    case QEvent::Wheel: {
      auto* wheel = static_cast<QWheelEvent*>(event);
      if (!IsDeepest(widget, wheel->position())) return false;
      QPoint p = widget->mapTo(this, wheel->position().toPoint());
      auto delta = static_cast<std::uint16_t>(static_cast<std::int16_t>(wheel->angleDelta().y()));
      return Deliver(kWmMouseWheel, static_cast<platform::WPARAM>(delta) << 16,
                     MakeLParam(p.x(), p.y())) != 0;
    }
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return TakeFileDrag(widget, static_cast<QDropEvent*>(event));
    case QEvent::KeyPress: {
      // Seen once, at the window's focus widget (the parents get it again when
      // the widget ignores it).
      if (widget->window()->focusWidget() != widget) return false;
      auto* key = static_cast<QKeyEvent*>(event);
      if (Deliver(kWmKeyDown, KeyCode(key->key()), Modifiers(key->modifiers())) != 0) return true;
      auto* rich = qobject_cast<QTextEdit*>(widget);
      bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
      if (rich && !rich->isReadOnly() && isReturn) {
        if (key->modifiers() & Qt::ShiftModifier) {
          rich->textCursor().insertBlock();  // a plain new line, not U+2028
        } else {
          SendNotify(qt::NearestControl(widget), kNotifyReturn);
        }
        return true;
      }
      return false;
    }
    default:
      return false;
  }
}

}  // namespace ui

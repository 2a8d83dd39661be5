#include "ui/kit/window_impl_base.h"

#include <QGuiApplication>
#include <QPointer>
#include <QScreen>

#include "platform/trace.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/host_widget.h"
#include "ui/kit/qt/row_list_view.h"
#include "ui/kit/qt/skin_loader.h"
#include "ui/kit/qt/window_host.h"
#include "ui/kit/resources.h"

namespace ui {
namespace {

QString ToQ(const WString& s) {
  return QString::fromUtf16(s.data(), static_cast<qsizetype>(s.size()));
}

}  // namespace

WindowImplBase::WindowImplBase() : alive_(std::make_shared<bool>(true)) {}

WindowImplBase::~WindowImplBase() {
  *alive_ = false;
  if (!host_) return;
  WindowHost* host = host_;
  host_ = nullptr;
  host->Detach();
  // Deleted from inside one of its own handlers it must outlive the handler.
  if (host->busy()) {
    platform::UnregisterWindow(host->handle());
    host->hide();
    host->deleteLater();
  } else {
    delete host;
  }
}

bool WindowImplBase::Create(WindowImplBase* owner, const WString& windowName, WindowStyle style) {
  return CreateOwned(owner, HostWindow{}, windowName, style);
}

bool WindowImplBase::Create(HostWindow owner, const WString& windowName, WindowStyle style) {
  return CreateOwned(nullptr, owner, windowName, style);
}

bool WindowImplBase::CreateOwned(WindowImplBase* owner, HostWindow hostOwner,
                                 const WString& windowName, WindowStyle style) {
  if (host_) return false;
  owner_ = owner;
  hostOwner_ = hostOwner;
  QWidget* ownerHost = owner ? owner->host_ : qt::HostWidget(hostOwner);
  auto* host = new WindowHost(this, ownerHost, style);
  QString folder = QString::fromStdString(ResourcePath(GetSkinFolder()));
  QWidget* root = qt::LoadSkin(folder, QString::fromStdString(GetSkinFile()), host);
  if (!root) {
    host->Detach();
    delete host;
    return false;
  }
  host_ = host;
  root->setProperty("im_skinFolder", folder);
  host->setObjectName(QString::fromStdString(GetWindowClassName()));
  host->setWindowTitle(ToQ(windowName));
  host->Attach(root);
  std::shared_ptr<bool> alive = alive_;
  InitWindow();
  if (!*alive || !host_) return false;
  TNotifyUI init;
  init.sType = std::string(kNotifyWindowInit);
  Notify(init);
  return true;
}

bool WindowImplBase::IsCreated() const {
  return host_ != nullptr;
}

int WindowImplBase::ShowModal() {
  if (!host_) return -1;
  QPointer<WindowHost> host = host_;
  // Nothing of `this` is used after the loop: the window may have deleted
  // itself in OnFinalMessage.
  int code = host->exec();
  if (host && host->detached()) delete host.data();
  return code;
}

void WindowImplBase::ShowWindow(bool show, bool takeFocus) {
  if (!host_) return;
  if (!show) {
    host_->hide();
    return;
  }
  host_->setAttribute(Qt::WA_ShowWithoutActivating, !takeFocus);
  host_->show();
  if (takeFocus) {
    host_->raise();
    host_->activateWindow();
  }
}

bool WindowImplBase::IsWindowVisible() const {
  return host_ && host_->isVisible();
}

void WindowImplBase::Close(int code) {
  if (host_) platform::PostMessage(host_->handle(), kWmClose, static_cast<WPARAM>(code), 0);
}

void WindowImplBase::CenterWindow() {
  if (!host_) return;
  QRect area;
  QWidget* owner = owner_ ? owner_->host_ : qt::HostWidget(hostOwner_);
  if (owner && owner->isVisible()) {
    area = owner->frameGeometry();
  } else if (QScreen* screen = QGuiApplication::primaryScreen()) {
    area = screen->availableGeometry();
  } else {
    return;
  }
  QRect frame = host_->frameGeometry();
  frame.moveCenter(area.center());
  host_->move(frame.topLeft());
}

Rect WindowImplBase::GetWindowRect() const {
  if (!host_) return {};
  QRect g = host_->frameGeometry();
  return Rect{g.left(), g.top(), g.left() + g.width(), g.top() + g.height()};
}

void WindowImplBase::MoveWindow(const Rect& r) {
  if (host_) host_->setGeometry(r.left, r.top, r.Width(), r.Height());
}

void WindowImplBase::ResizeClient(int width, int height) {
  if (host_) host_->resize(width, height);
}

void WindowImplBase::DragAcceptFiles(bool accept) {
  if (host_) host_->SetAcceptFiles(accept);
}

void WindowImplBase::SetCaption(int height, int border) {
  if (!host_) return;
  host_->frameDrag().SetCaptionHeight(height);
  host_->frameDrag().SetSizingBorder(border);
}

platform::WindowHandle WindowImplBase::GetHWND() const {
  return host_ ? host_->handle() : platform::WindowHandle::kNone;
}

Control WindowImplBase::FindControl(std::string_view name) const {
  if (!host_ || !host_->root()) return {};
  return qt::MakeControl(host_->root()).FindSubControl(name);
}

Control WindowImplBase::FindControlAt(Point point) const {
  if (!host_) return {};
  QPoint at(point.x, point.y);
  QWidget* deepest = host_->childAt(at);
  if (!deepest) return {};
  return qt::MakeControl(qt::ControlUnder(deepest, deepest->mapFrom(host_, at)));
}

Point WindowImplBase::ClientToScreen(Point point) const {
  if (!host_) return point;
  QPoint screen = host_->mapToGlobal(QPoint(point.x, point.y));
  return Point{screen.x(), screen.y()};
}

Control WindowImplBase::CreateFromSkin(std::string_view skinFile) {
  if (!host_) return {};
  QString folder = QString::fromStdString(ResourcePath(GetSkinFolder()));
  QWidget* item = qt::LoadSkin(
      folder, QString::fromUtf8(skinFile.data(), static_cast<qsizetype>(skinFile.size())),
      host_->orphanage());
  if (!item) return {};
  item->setProperty("im_skinFolder", folder);
  host_->Wire(item);
  return qt::MakeControl(item);
}

void WindowImplBase::SendNotify(const Control& sender, std::string_view type, WPARAM wParam,
                                LPARAM lParam) {
  if (host_) host_->SendNotify(qt::WidgetOf(sender), type, {}, wParam, lParam);
}

LRESULT WindowImplBase::SendMessage(unsigned msg, WPARAM wParam, LPARAM lParam) {
  return HandleMessage(msg, wParam, lParam);
}

void WindowImplBase::SetTimer(unsigned id, unsigned milliseconds) {
  if (host_) host_->SetTimer(id, milliseconds);
}

void WindowImplBase::KillTimer(unsigned id) {
  if (host_) host_->KillTimer(id);
}

bool WindowImplBase::IsTimerPending(unsigned id) const {
  return host_ && host_->IsTimerPending(id);
}

void WindowImplBase::Notify(TNotifyUI&) {}

LRESULT WindowImplBase::HandleMessage(unsigned uMsg, WPARAM wParam, LPARAM lParam) {
  bool handled = false;
  LRESULT result = 0;
  if (uMsg == kWmClose) result = OnClose(uMsg, wParam, lParam, handled);
  if (uMsg == kWmKillFocus) result = OnKillFocus(uMsg, wParam, lParam, handled);
  if (handled) return result;
  result = HandleCustomMessage(uMsg, wParam, lParam, handled);
  if (handled) return result;
  if (uMsg == kWmClose) DestroyWindow(static_cast<int>(wParam));
  return 0;
}

LRESULT WindowImplBase::HandleCustomMessage(unsigned, WPARAM, LPARAM, bool& bHandled) {
  bHandled = false;
  return 0;
}

LRESULT WindowImplBase::OnClose(unsigned, WPARAM, LPARAM, bool& bHandled) {
  bHandled = false;
  return 0;
}

LRESULT WindowImplBase::OnKillFocus(unsigned, WPARAM, LPARAM, bool& bHandled) {
  bHandled = false;
  return 0;
}

void WindowImplBase::DestroyWindow(int code) {
  if (!host_ || host_->shuttingDown()) return;
  WindowHost* host = host_;
  host->Shutdown();  // may run handlers that free payloads; `this` stays alive here
  if (!host_) return;
  host->done(code);
  host->hide();
  host->Detach();
  host_ = nullptr;
  host->deleteLater();
  OnFinalMessage();
}

}  // namespace ui

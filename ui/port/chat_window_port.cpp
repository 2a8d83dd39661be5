#include "ui/port/chat_window_port.h"

#include <memory>

#include "platform/trace.h"
#include "service/posting.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/main/im_wnd.h"

namespace ui {
namespace {

void TraceBox(const char* why, const WString& title, const WString& text) {
  platform::Trace("%s %s: %s", why, platform::Utf16ToUtf8(title).c_str(),
                  platform::Utf16ToUtf8(text).c_str());
}

}  // namespace

bool ChatWindowPort::Direct() const {
  return window_.OnWindowThread() && window_.IsCreated();
}

platform::WindowHandle ChatWindowPort::ChatWindow() const {
  return window_.CachedHandle();
}

void ChatWindowPort::ShowMessageBox(service::BoxOwner owner, const WString& title,
                                    const WString& text) {
  PortBoxRequest box{static_cast<int>(owner), title, text};
  if (Direct()) {
    window_.ShowPortBox(box);
    return;
  }
  if (!service::PostPayload<port_msg::kShowBox>(window_.CachedHandle(), service::kNoSession,
                                                std::move(box))) {
    TraceBox("no chat window for the box", title, text);
  }
}

bool ChatWindowPort::Confirm(const WString& title, const WString& text) {
  if (!Direct()) {
    TraceBox("a question cannot wait off the window thread, answered no:", title, text);
    return false;
  }
  CChatMessageBox(title, text, &window_, CChatMessageBox::kQuestion);
  return CChatMessageBox::Confirmed();
}

void ChatWindowPort::ResetWindow() {
  if (Direct()) {
    window_.ResetChatWindow();
  } else {
    service::Post<port_msg::kResetWindow>(window_.CachedHandle());
  }
}

bool ChatWindowPort::IsWindowVisible() const {
  return window_.IsVisibleAnyThread();
}

void ChatWindowPort::HideWindow() {
  if (Direct()) {
    window_.HideChat();
  } else {
    service::Post<port_msg::kHideWindow>(window_.CachedHandle());
  }
}

void ChatWindowPort::FlashHostWindowIfMinimised() {
  if (Direct()) {
    window_.FlashHostWindowIfMinimised();
  } else {
    service::Post<port_msg::kFlashHost>(window_.CachedHandle());
  }
}

}  // namespace ui

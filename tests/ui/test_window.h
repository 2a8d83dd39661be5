#pragma once
// A window for the tests: any skin, records every notification and message.

#include <functional>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QDeadlineTimer>

#include "ui/kit/window_impl_base.h"

namespace ui::test {

class RecordingWindow : public WindowImplBase {
 public:
  explicit RecordingWindow(std::string skin, std::string folder = "tests\\ui\\skins\\")
      : skin_(std::move(skin)), folder_(std::move(folder)) {}

  struct Seen {
    std::string type;
    std::string sender;
  };
  std::vector<Seen> notes;
  std::vector<platform::WindowMessage> messages;
  int finalMessages = 0;
  bool initWindowRan = false;
  std::function<void(TNotifyUI&)> onNotify;
  std::function<LRESULT(unsigned, WPARAM, LPARAM)> onMessage;

  size_t Count(const std::string& type, const std::string& sender = {}) const {
    size_t n = 0;
    for (const Seen& s : notes) n += s.type == type && (sender.empty() || s.sender == sender);
    return n;
  }

 protected:
  std::string GetSkinFolder() const override { return folder_; }
  std::string GetSkinFile() const override { return skin_; }
  std::string GetWindowClassName() const override { return "RecordingWindow"; }
  void InitWindow() override { initWindowRan = true; }
  void Notify(TNotifyUI& msg) override {
    notes.push_back({msg.sType, msg.pSender.GetName()});
    if (onNotify) onNotify(msg);
  }
  LRESULT HandleCustomMessage(unsigned uMsg, WPARAM wParam, LPARAM lParam,
                              bool& bHandled) override {
    messages.push_back({uMsg, wParam, lParam});
    LRESULT result = onMessage ? onMessage(uMsg, wParam, lParam) : 0;  // non-zero: handled
    if (result != 0) return bHandled = true, result;
    return WindowImplBase::HandleCustomMessage(uMsg, wParam, lParam, bHandled);
  }
  void OnFinalMessage() override { ++finalMessages; }

 private:
  std::string skin_;
  std::string folder_;
};

inline bool PumpUntil(const std::function<bool()>& done, int milliseconds = 5000) {
  QDeadlineTimer deadline(milliseconds);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

inline void Pump(int milliseconds) {
  PumpUntil([] { return false; }, milliseconds);
}

}  // namespace ui::test

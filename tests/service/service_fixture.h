#pragma once
// End-to-end fixture: a CChatTools against the embedded IM engine, with a
// FakeWindow whose queue the test thread pumps, playing the window thread
// (3024 and 3196 go back to the service as the chat window does; every
// payload is freed).

#include <gtest/gtest.h>
#include <json/json.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "imsdk/engine_control.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/window_port.h"

namespace service_test {

struct Box {
  service::BoxOwner owner = service::BoxOwner::kNone;
  WString title;
  WString text;
};

// Records what the service asks of the window; posts land in `queue`.
class FakeWindow final : public service::WindowPort {
 public:
  platform::WindowHandle ChatWindow() const override { return queue.handle(); }
  void ShowMessageBox(service::BoxOwner owner, const WString& title, const WString& text) override {
    std::lock_guard lock(mutex_);
    boxes_.push_back({owner, title, text});
  }
  bool Confirm(const WString& title, const WString& text) override {
    ShowMessageBox(service::BoxOwner::kChatWindow, title, text);
    return confirm;
  }
  void ResetWindow() override { ++resets; }
  bool IsWindowVisible() const override { return visible; }
  void HideWindow() override {
    ++hides;
    visible = false;
  }
  void FlashHostWindowIfMinimised() override { ++flashes; }
  std::vector<Box> Boxes(size_t from = 0) const {
    std::lock_guard lock(mutex_);
    return std::vector<Box>(boxes_.begin() + static_cast<std::ptrdiff_t>(from), boxes_.end());
  }

  platform::QueuedWindow queue;
  std::atomic<int> resets{0}, hides{0}, flashes{0};
  std::atomic<bool> visible{false}, confirm{true};

 private:
  mutable std::mutex mutex_;
  std::vector<Box> boxes_;
};

Json::Value ParseJsonText(const std::string& text);
// The member names of an object, sorted.
std::vector<std::string> Keys(const Json::Value& object);
// The texts separated by spaces.
std::string Joined(const std::vector<std::string>& texts);

// The embedded engine's call log for one test (IMSDK_CALL_LOG).
class SdkCallLog {
 public:
  SdkCallLog();
  std::vector<std::string> Calls() const;
  // The parameters of every call of `function`, in order.
  std::vector<Json::Value> CallsOf(const std::string& function) const;
  // A JSON parameter as the function got it (logged as text or as a value).
  static Json::Value Param(const Json::Value& params, const char* name);

 private:
  std::vector<Json::Value> Lines() const;
  std::string path_;
};

// One message the test window handled.
struct Seen {
  unsigned msg = 0;
  platform::WPARAM wParam = 0;  // payload-free messages only
  uint32_t eventKind = 0;       // 3024
  std::string text;             // 3024 record text, 3196 and 3197 JSON
  WString first;                // 3192, 3193 id
  WString second;               // 3193 name
};

class ServiceTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // LoginIm's sign-in and, when accepted, the pump until the conversation
  // and friend lists have been handled.
  bool SignIn(const std::string& userId = "10001", bool waitForLists = true);
  bool PumpUntil(const std::function<bool()>& done,
                 std::chrono::milliseconds timeout = std::chrono::seconds(5));
  bool PumpUntilEvent(uint32_t kind, size_t count = 1);
  // An engine send (its result given) and the pushed message it caused, handled.
  bool HandlePushed(int sendResult);
  void DrainNow();
  void ClearSeen() {
    DrainNow();
    seen_.clear();
  }

  size_t CountSeen(unsigned msg, std::optional<platform::WPARAM> wParam = std::nullopt) const;
  size_t CountEvents(uint32_t kind) const;
  std::vector<Seen> SeenOf(unsigned msg) const;
  // The user's rows of the conversation in Chat.db, newest first.
  static std::vector<MessageStru> StoredRows(const WString& convId);

  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  FakeWindow window;
  std::unique_ptr<CChatTools> tools;
  platform::ScopedTraceCapture traces;
  std::vector<Seen> seen_;

 private:
  void Handle(const platform::WindowMessage& message, bool dispatch);
};

}  // namespace service_test

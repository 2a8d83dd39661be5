#pragma once
// End-to-end fixture: a CChatTools against the embedded IM engine, with a
// FakeWindow whose queue the test pumps on its own thread, playing the
// window thread (it hands 3024 and 3196 back to the service as the chat
// window does and frees every payload).

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "imsdk/engine_control.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "tests/service/fake_window.h"

namespace service_test {

// One message the test window handled.
struct Seen {
  unsigned msg = 0;
  platform::WPARAM wParam = 0;  // payload-free messages only
  uint32_t eventKind = 0;       // 3024
  std::string text;             // 3024 record text, 3196 and 3197 JSON
  WString first;                // 3178/3192 id, 3193 id
  WString second;               // 3193 name
};

class ServiceTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // LoginIm's sign-in (Init once per process) and, when it was accepted, the
  // pump until the conversation and friend lists have been handled.
  bool SignIn(const std::string& userId = "10001", bool waitForLists = true);
  // Handles queued messages until `done` holds (true) or `timeout` passes (false).
  bool PumpUntil(const std::function<bool()>& done,
                 std::chrono::milliseconds timeout = std::chrono::seconds(5));
  // Until a 3024 record of `kind` has been dispatched.
  bool PumpUntilEvent(uint32_t kind, size_t count = 1);
  // Handles what is queued now.
  void DrainNow();

  size_t CountSeen(unsigned msg) const;
  size_t CountEvents(uint32_t kind) const;
  std::vector<Seen> SeenOf(unsigned msg) const;
  // Handles what is queued, then forgets everything seen so far.
  void ClearSeen() {
    DrainNow();
    seen_.clear();
  }

  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  FakeWindow window;
  std::unique_ptr<CChatTools> tools;
  platform::ScopedTraceCapture traces;
  std::vector<Seen> seen_;

 private:
  void Handle(const platform::WindowMessage& message, bool dispatch);
};

}  // namespace service_test

#pragma once
// Drives the SDK through its C functions and records every callback with
// the thread it ran on.
#include <gtest/gtest.h>
#include <json/json.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "imsdk/engine_control.h"
#include "imsdk/im_sdk.h"

namespace imsdk_test {

struct Record {
  std::string name;  // "result" for request results, else the callback kind
  int code = 0;
  std::string json;
  std::string tag;  // the request's tag (user data) for results
  std::thread::id thread;
};

class Recorder {
 public:
  void Add(Record record);
  // How long the waits below wait (5 s unless set).
  void SetPatience(std::chrono::seconds patience);
  // Waits until `count` records named `name` exist; returns them.
  std::vector<Record> WaitFor(const std::string& name, size_t count = 1);
  // The result of the request tagged `tag` (waits for it).
  Record Result(const std::string& tag);
  std::vector<Record> All() const;
  size_t Count(const std::string& name) const;
  void Clear();

 private:
  std::vector<Record> Matching(const std::function<bool(const Record&)>& match, size_t count);
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Record> records_;
  std::chrono::seconds patience_{5};
};

Recorder& GetRecorder();
// A result callback; `user_data` is a tag created by Tag().
void OnResult(int32_t code, const char* desc, const char* json, void* user_data);
// A stable C string for a tag, kept for the process.
void* Tag(const std::string& tag);
// Registers all thirteen event callbacks with the recorder.
void RegisterAllCallbacks();
Json::Value Parse(const std::string& text);
std::string Write(const Json::Value& value);
// A path in this test process's scratch folder.
std::string Scratch(const std::string& name);
// A message with one element of `elem_type` whose `key` is `value`.
std::string Msg(int elem_type, const std::string& key, const std::string& value);
inline std::string TextMsg(const std::string& text) {
  return Msg(kTIMElem_Text, "text_elem_content", text);
}

class SdkTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // An account anyone may message and befriend without confirmation.
  void OpenAccount(const std::string& id, const std::string& nick = "");
  // Signs in `id` (created open when missing) and waits for the result.
  void SignIn(const std::string& id);
  // Calls, expects acceptance, waits for the result.
  Record Request(const std::string& tag, int rc);
  // fn(args..., OnResult, Tag(tag)) through Request.
  template <typename F, typename... A>
  Record Call(const std::string& tag, F fn, A... args) {
    return Request(tag, fn(args..., OnResult, Tag(tag)));
  }
  template <typename F, typename... A>
  Json::Value CallJson(const std::string& tag, F fn, A... args) {
    return Parse(Call(tag, fn, args...).json);
  }
  imsdk::EngineControl& control = imsdk::EngineControl::Instance();
  Recorder& rec = GetRecorder();
};

}  // namespace imsdk_test

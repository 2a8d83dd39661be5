#include "tests/imsdk/sdk_fixture.h"

#include <chrono>
#include <cstdlib>
#include <set>

namespace imsdk_test {

void Recorder::Add(Record record) {
  std::lock_guard lock(mutex_);
  records_.push_back(std::move(record));
  changed_.notify_all();
}

std::vector<Record> Recorder::Matching(const std::function<bool(const Record&)>& match,
                                       size_t count) {
  std::unique_lock lock(mutex_);
  std::vector<Record> found;
  changed_.wait_for(lock, patience_, [&] {
    found.clear();
    for (const auto& r : records_) {
      if (match(r)) found.push_back(r);
    }
    return found.size() >= count;
  });
  return found;
}

std::vector<Record> Recorder::WaitFor(const std::string& name, size_t count) {
  return Matching([&](const Record& r) { return r.name == name; }, count);
}

Record Recorder::Result(const std::string& tag) {
  auto found = Matching([&](const Record& r) { return r.name == "result" && r.tag == tag; }, 1);
  EXPECT_FALSE(found.empty()) << "no result for " << tag;
  return found.empty() ? Record{} : found[0];
}

std::vector<Record> Recorder::All() const {
  std::lock_guard lock(mutex_);
  return records_;
}

size_t Recorder::Count(const std::string& name) const {
  std::lock_guard lock(mutex_);
  size_t n = 0;
  for (const auto& r : records_) n += r.name == name;
  return n;
}

void Recorder::SetPatience(std::chrono::seconds patience) {
  std::lock_guard lock(mutex_);
  patience_ = patience;
}

void Recorder::Clear() {
  std::lock_guard lock(mutex_);
  records_.clear();
}

Recorder& GetRecorder() {
  static Recorder recorder;
  return recorder;
}

void* Tag(const std::string& tag) {
  static std::mutex mutex;
  static std::set<std::string> tags;  // nodes stay put: the pointers stay valid
  std::lock_guard lock(mutex);
  return const_cast<char*>(tags.insert(tag).first->c_str());
}

void OnResult(int32_t code, const char*, const char* json, void* user_data) {
  GetRecorder().Add(
      {"result", code, json, static_cast<const char*>(user_data), std::this_thread::get_id()});
}

namespace {

void Text(const char* name, const char* json) {
  GetRecorder().Add({name, 0, json, "", std::this_thread::get_id()});
}

}  // namespace

void RegisterAllCallbacks() {
  TIMAddRecvNewMsgCallback([](const char* j, void*) { Text("new_msg", j); }, nullptr);
  TIMSetMsgReadedReceiptCallback([](const char* j, void*) { Text("receipt", j); }, nullptr);
  TIMSetMsgRevokeCallback([](const char* j, void*) { Text("revoke", j); }, nullptr);
  TIMSetMsgElemUploadProgressCallback(
      [](const char*, uint32_t, uint32_t cur, uint32_t total, void*) {
        Text("upload", (std::to_string(cur) + "/" + std::to_string(total)).c_str());
      },
      nullptr);
  TIMSetGroupTipsEventCallback([](const char* j, void*) { Text("group_tips", j); }, nullptr);
  TIMSetNetworkStatusListenerCallback(
      [](int32_t status, int32_t code, const char*, void*) {
        GetRecorder().Add(
            {"network", status, std::to_string(code), "", std::this_thread::get_id()});
      },
      nullptr);
  TIMSetKickedOfflineCallback([](void*) { Text("kicked", ""); }, nullptr);
  TIMSetUserSigExpiredCallback([](void*) { Text("sig_expired", ""); }, nullptr);
  TIMSetOnAddFriendCallback([](const char* j, void*) { Text("friend_added", j); }, nullptr);
  TIMSetOnDeleteFriendCallback([](const char* j, void*) { Text("friend_deleted", j); }, nullptr);
  TIMSetUpdateFriendProfileCallback([](const char* j, void*) { Text("friend_profile", j); },
                                    nullptr);
  TIMSetFriendAddRequestCallback([](const char* j, void*) { Text("friend_request", j); }, nullptr);
  TIMSetLogCallback([](int32_t, const char* j, void*) { Text("log", j); }, nullptr);
}

Json::Value Parse(const std::string& text) {
  Json::Value v;
  Json::Reader().parse(text, v);
  return v;
}

std::string Write(const Json::Value& value) {
  Json::StreamWriterBuilder b;
  b["indentation"] = "";
  return Json::writeString(b, value);
}

std::string Scratch(const std::string& name) {
  return std::string(std::getenv("XDG_RUNTIME_DIR")) + "/" + name;
}

std::string Msg(int elem_type, const std::string& key, const std::string& value) {
  Json::Value msg;
  msg["message_elem_array"][0]["elem_type"] = elem_type;
  msg["message_elem_array"][0][key] = value;
  return Write(msg);
}

void SdkTest::SetUp() {
  control.Reset();
  rec.Clear();
  RegisterAllCallbacks();
  ASSERT_EQ(TIMInit(1400000001, "{}"), TIM_SUCC);
}

void SdkTest::TearDown() {
  TIMUninit();
  control.Reset();
}

void SdkTest::OpenAccount(const std::string& id, const std::string& nick) {
  control.CreateAccount(id, {nick, "", kTIMAddPermission_AllowAny, ""});
}

void SdkTest::SignIn(const std::string& id) {
  OpenAccount(id);
  ASSERT_EQ(Call("login " + id, TIMLogin, id.c_str(), "sig").code, TIM_SUCC);
}

Record SdkTest::Request(const std::string& tag, int rc) {
  EXPECT_EQ(rc, TIM_SUCC) << tag;
  if (rc != TIM_SUCC) return Record{"refused", rc, "", tag, {}};
  return rec.Result(tag);
}

}  // namespace imsdk_test

#include "imsdk/sdk_runtime.h"

#include <cstring>
#include <mutex>

#include "imsdk/call_log.h"
#include "imsdk/engine.h"
#include "imsdk/failure_queue.h"
#include "imsdk/json_util.h"
#include "imsdk/xmpp/xmpp_backend.h"
#include "imsdk/xmpp/xmpp_config.h"
#include "platform/trace.h"

namespace imsdk {

class Runtime::Sink : public EventSink {
 public:
  explicit Sink(std::weak_ptr<CallbackThread> thread) : thread_(std::move(thread)) {}
  void Post(Event event) override {
    if (event.kind == EventKind::kLog) {
      std::lock_guard lock(mutex_);
      if (event.a < log_level_) return;
    }
    if (auto thread = thread_.lock()) {
      thread->Post([event = std::move(event)] { DeliverEvent(event); });
    }
  }
  void RunLater(std::chrono::milliseconds delay, std::function<void()> task) override {
    if (auto thread = thread_.lock()) thread->PostInternal(delay, std::move(task));
  }
  void SetLogLevel(int level) {
    std::lock_guard lock(mutex_);
    log_level_ = level;
  }

 private:
  std::weak_ptr<CallbackThread> thread_;
  std::mutex mutex_;
  int log_level_ = 0;
};

Runtime::Runtime(Backend* backend, int callback_log_level, std::unique_ptr<Backend> owned)
    : owned_backend_(std::move(owned)),
      backend_(backend),
      thread_(std::make_shared<CallbackThread>()),
      sink_(new Sink(thread_)) {
  sink_->SetLogLevel(callback_log_level);
  backend_->Start(sink_.get());
}

Runtime::~Runtime() {
  Shutdown();
}

void Runtime::Shutdown() {
  if (shut_down_.exchange(true)) return;
  backend_->Stop();
  thread_->Stop();
}

void Runtime::SetCallbackLogLevel(int level) {
  sink_->SetLogLevel(level);
}

ResultFn Runtime::Result(const char* function, TIMCommCallback cb, void* user_data) {
  std::weak_ptr<CallbackThread> weak = thread_;
  return
      [weak, function, cb, user_data](int code, const std::string& desc, const std::string& json) {
        auto thread = weak.lock();
        if (!thread) return;
        thread->Post([function, cb, user_data, code, desc, json] {
          if (CallLogEnabled()) {
            Json::Value line;
            line["code"] = code;
            line["desc"] = desc;
            line["json"] = json;
            LogCallback(function, std::move(line));
          }
          if (cb != nullptr) cb(code, desc.c_str(), json.c_str(), user_data);
        });
      };
}

namespace {

std::mutex& RuntimeMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<Runtime>& RuntimeSlot() {
  static std::shared_ptr<Runtime> runtime;
  return runtime;
}

// Held for the whole of TIMInit and TIMUninit, so that they never overlap.
std::mutex& LifecycleMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

// The embedded engine, or a server backend when the configuration asks for one.
static std::shared_ptr<Runtime> MakeRuntime(const Json::Value& config) {
  const std::string folder = config.get("sdk_config_config_file_path", "").asString();
  xmpp::BackendChoice choice = xmpp::ChooseBackend(folder);
  if (!choice.xmpp && choice.error.empty()) {
    return std::make_shared<Runtime>(&Engine::Instance(), 0);
  }
  if (!choice.error.empty()) {
    platform::Trace("imsdk: %s; every sign-in will fail", choice.error.c_str());
  } else {
    platform::Trace("imsdk: XMPP server backend for %s (from %s)", choice.xmpp->domain.c_str(),
                    choice.file.c_str());
  }
  auto backend =
      std::make_unique<xmpp::XmppBackend>(choice.xmpp.value_or(xmpp::XmppConfig{}), choice.error);
  Backend* raw = backend.get();
  return std::make_shared<Runtime>(raw, 0, std::move(backend));
}

std::shared_ptr<Runtime> CurrentRuntime() {
  std::lock_guard lock(RuntimeMutex());
  return RuntimeSlot();
}

int StartRuntime(const Json::Value& config) {
  std::unique_lock life(LifecycleMutex(), std::try_to_lock);
  if (!life.owns_lock()) return TIM_ERR_ALREADY_INITIALIZED;  // TIMUninit still running
  if (CurrentRuntime()) return TIM_ERR_ALREADY_INITIALIZED;
  auto runtime = MakeRuntime(config);
  std::lock_guard lock(RuntimeMutex());
  RuntimeSlot() = std::move(runtime);
  return TIM_SUCC;
}

int StopRuntime() {
  std::lock_guard life(LifecycleMutex());
  std::shared_ptr<Runtime> runtime;
  {
    std::lock_guard lock(RuntimeMutex());
    runtime = RuntimeSlot();
    if (!runtime) return TIM_ERR_NOT_INITIALIZED;
    if (runtime->thread().IsCurrentThread()) return TIM_ERR_IN_CALLBACK;
    RuntimeSlot().reset();
  }
  runtime->Shutdown();
  return TIM_SUCC;
}

int EnterCall(const char* function, const Json::Value& log_params, std::shared_ptr<Runtime>* rt) {
  LogCall(function, log_params);
  *rt = CurrentRuntime();
  if (!*rt) {
    platform::Trace("imsdk: %s refused: not initialised", function);
    return TIM_ERR_NOT_INITIALIZED;
  }
  if (int code = FailureQueue::Calls().Take(function)) return code;
  return TIM_SUCC;
}

int CheckId(const char* id, std::string* out) {
  if (id == nullptr) return TIM_ERR_INVALID_PARAM;
  size_t length = strnlen(id, TIM_MAX_ID_LENGTH + 1);
  if (length == 0 || length > TIM_MAX_ID_LENGTH) return TIM_ERR_INVALID_PARAM;
  out->assign(id, length);
  return TIM_SUCC;
}

int CheckConvType(int32_t conv_type) {
  return (conv_type == kTIMConv_C2C || conv_type == kTIMConv_Group) ? TIM_SUCC
                                                                    : TIM_ERR_INVALID_CONV_TYPE;
}

int ParseParam(const char* text, Json::ValueType kind, bool optional, Json::Value* out) {
  *out = Json::Value();
  if (text == nullptr || *text == '\0') return optional ? TIM_SUCC : TIM_ERR_INVALID_PARAM;
  size_t length = strnlen(text, TIM_MAX_JSON_LENGTH + 1);
  if (length > TIM_MAX_JSON_LENGTH) return TIM_ERR_INVALID_PARAM;
  if (!ParseJson(std::string(text, length), out)) return TIM_ERR_INVALID_JSON;
  if (out->type() != kind) return TIM_ERR_INVALID_JSON;
  return TIM_SUCC;
}

Json::Value LogText(const char* text) {
  if (text == nullptr) return Json::Value();
  return Json::Value(std::string(text, strnlen(text, TIM_MAX_JSON_LENGTH + 1)));
}

}  // namespace imsdk

namespace imsdk {

int ForwardJson(const char* function, const char* json, Json::ValueType kind, TIMCommCallback cb,
                void* user_data, int (Backend::*method)(const Json::Value&, ResultFn)) {
  Json::Value log;
  if (CallLogEnabled()) log["json"] = LogText(json);
  return Forward(function, log, [&](Runtime& rt) -> int {
    Json::Value param;
    if (int code = ParseParam(json, kind, false, &param)) return code;
    return (rt.backend().*method)(param, rt.Result(function, cb, user_data));
  });
}

int ForwardPlain(const char* function, TIMCommCallback cb, void* user_data,
                 int (Backend::*method)(ResultFn)) {
  return Forward(function, Json::Value(Json::objectValue), [&](Runtime& rt) -> int {
    return (rt.backend().*method)(rt.Result(function, cb, user_data));
  });
}

}  // namespace imsdk

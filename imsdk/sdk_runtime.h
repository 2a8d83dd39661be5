#pragma once
// What the C functions share: the running SDK (backend + callback thread),
// the registered event callbacks, and the entry checks every function makes.
#include <atomic>
#include <memory>
#include <string>

#include "imsdk/backend.h"
#include "imsdk/callback_thread.h"
#include "imsdk/im_sdk.h"

namespace imsdk {

class Runtime {
 public:
  // `owned` is the backend when the runtime owns it (a server backend).
  Runtime(Backend* backend, int callback_log_level, std::unique_ptr<Backend> owned = nullptr);
  ~Runtime();
  Backend& backend() { return *backend_; }
  CallbackThread& thread() { return *thread_; }
  // A ResultFn that carries the result to `cb` on the callback thread.
  ResultFn Result(const char* function, TIMCommCallback cb, void* user_data);
  void SetCallbackLogLevel(int level);
  // Stops the backend and the thread (TIMUninit).
  void Shutdown();

 private:
  class Sink;
  std::unique_ptr<Backend> owned_backend_;
  Backend* backend_;
  std::shared_ptr<CallbackThread> thread_;
  std::unique_ptr<Sink> sink_;
  std::atomic<bool> shut_down_{false};
};

// The running SDK, null before TIMInit and after TIMUninit.
std::shared_ptr<Runtime> CurrentRuntime();
// TIMInit/TIMUninit bodies.
int StartRuntime(const Json::Value& config);
int StopRuntime();

// Entry of every request function: writes the call log line, then refuses
// when not initialised or when a failure is queued for it.
int EnterCall(const char* function, const Json::Value& log_params, std::shared_ptr<Runtime>* rt);

// Parameter checks; each returns 0 or a refusal code.
int CheckId(const char* id, std::string* out);
int CheckConvType(int32_t conv_type);
// `text` must be JSON of the given kind; null or "" is allowed when
// `optional` and reads as a null value.
int ParseParam(const char* text, Json::ValueType kind, bool optional, Json::Value* out);
// A C string for the call log (null stays null).
Json::Value LogText(const char* text);

// Event callback registry (callback_registry.cpp).
void DeliverEvent(const Event& event);

}  // namespace imsdk

namespace imsdk {

// Entry checks, then `request(runtime)`; returns its code.
template <typename Request>
int Forward(const char* function, const Json::Value& log_params, Request&& request) {
  std::shared_ptr<Runtime> rt;
  if (int code = EnterCall(function, log_params, &rt)) return code;
  return request(*rt);
}

// The common shape: one JSON parameter of `kind` and a result callback.
int ForwardJson(const char* function, const char* json, Json::ValueType kind, TIMCommCallback cb,
                void* user_data, int (Backend::*method)(const Json::Value&, ResultFn));
// No parameter, a result callback.
int ForwardPlain(const char* function, TIMCommCallback cb, void* user_data,
                 int (Backend::*method)(ResultFn));

}  // namespace imsdk

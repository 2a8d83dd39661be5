// Start-up, configuration and sign-in functions.
#include <cstring>
#include <mutex>

#include "imsdk/call_log.h"
#include "imsdk/failure_queue.h"
#include "imsdk/json_util.h"
#include "imsdk/sdk_runtime.h"

using namespace imsdk;

namespace {

std::mutex& ConfigMutex() {
  static std::mutex mutex;
  return mutex;
}

// The configuration in force (TIMSetConfig reports it back).
Json::Value& CurrentConfig() {
  static Json::Value config(Json::objectValue);
  return config;
}

}  // namespace

extern "C" {

int TIMInit(uint64_t sdk_app_id, const char* json_sdk_config) {
  if (CallLogEnabled()) {
    Json::Value log;
    log["sdk_app_id"] = Json::UInt64(sdk_app_id);
    log["json_sdk_config"] = LogText(json_sdk_config);
    LogCall("TIMInit", log);
  }
  if (int code = FailureQueue::Calls().Take("TIMInit")) return code;
  Json::Value config;
  if (int code = ParseParam(json_sdk_config, Json::objectValue, true, &config)) return code;
  ParamReader reader(config);
  reader.String("sdk_config_log_file_path");
  reader.String("sdk_config_config_file_path");
  if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  return StartRuntime(config);
}

int TIMUninit(void) {
  LogCall("TIMUninit", Json::Value(Json::objectValue));
  return StopRuntime();
}

int TIMSetConfig(const char* json_config, TIMCommCallback cb, void* user_data) {
  Json::Value log;
  if (CallLogEnabled()) log["json_config"] = LogText(json_config);
  return Forward("TIMSetConfig", log, [&](Runtime& rt) -> int {
    Json::Value param;
    if (int code = ParseParam(json_config, Json::objectValue, false, &param)) return code;
    ParamReader reader(param);
    reader.Int64("set_config_log_level");
    int64_t callback_level = reader.Int64("set_config_callback_log_level", 0);
    const Json::Value& user_config = reader.Object("set_config_user_config");
    reader.String("set_config_user_define_data");
    ParamReader user_reader(user_config);
    user_reader.Bool("user_config_is_read_receipt");
    if (!reader.ok() || !user_reader.ok()) return TIM_ERR_INVALID_JSON;
    std::string result;
    {
      std::lock_guard lock(ConfigMutex());
      for (const auto& key : param.getMemberNames()) CurrentConfig()[key] = param[key];
      result = WriteJson(CurrentConfig());
    }
    rt.SetCallbackLogLevel(static_cast<int>(callback_level));
    rt.Result("TIMSetConfig", cb, user_data)(TIM_SUCC, "", result);
    return TIM_SUCC;
  });
}

int TIMLogin(const char* user_id, const char* user_sig, TIMCommCallback cb, void* user_data) {
  Json::Value log;
  if (CallLogEnabled()) {
    log["user_id"] = LogText(user_id);
    // The signature is a credential: only its presence is logged.
    log["user_sig"] = user_sig == nullptr ? Json::Value() : Json::Value("***");
  }
  return Forward("TIMLogin", log, [&](Runtime& rt) -> int {
    std::string id;
    if (int code = CheckId(user_id, &id)) return code;
    if (user_sig == nullptr) return static_cast<int>(TIM_ERR_INVALID_PARAM);
    std::string sig(user_sig, strnlen(user_sig, TIM_MAX_JSON_LENGTH + 1));
    if (sig.size() > TIM_MAX_JSON_LENGTH) return static_cast<int>(TIM_ERR_INVALID_PARAM);
    return rt.backend().Login(id, sig, rt.Result("TIMLogin", cb, user_data));
  });
}

int TIMLogout(TIMCommCallback cb, void* user_data) {
  return Forward("TIMLogout", Json::Value(Json::objectValue), [&](Runtime& rt) -> int {
    // The engine answers a logout before returning; the answer is held back
    // so that it follows whatever was queued before it.
    int result_code = 0;
    std::string result_desc, result_json;
    int code = rt.backend().Logout([&](int c, const std::string& desc, const std::string& json) {
      result_code = c;
      result_desc = desc;
      result_json = json;
    });
    if (code != TIM_SUCC) return code;
    const bool on_callback_thread = rt.thread().IsCurrentThread();
    if (on_callback_thread) rt.thread().DiscardPendingCallbacks();
    rt.Result("TIMLogout", cb, user_data)(result_code, result_desc, result_json);
    if (!on_callback_thread) rt.thread().Drain();
    return static_cast<int>(TIM_SUCC);
  });
}

}  // extern "C"

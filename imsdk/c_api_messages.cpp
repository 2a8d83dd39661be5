// Conversation and message functions.
#include <cstring>

#include "imsdk/call_log.h"
#include "imsdk/sdk_runtime.h"

using namespace imsdk;

namespace {

Json::Value ConvLog(const char* conv_id, int32_t conv_type) {
  Json::Value log(Json::objectValue);
  if (CallLogEnabled()) {
    log["conv_id"] = LogText(conv_id);
    log["conv_type"] = conv_type;
  }
  return log;
}

// Conversation id and type checks shared by the functions below.
int CheckConv(const char* conv_id, int32_t conv_type, std::string* id) {
  if (int code = CheckId(conv_id, id)) return code;
  return CheckConvType(conv_type);
}

using ConvRequest = int (Backend::*)(const std::string&, int, const Json::Value&, ResultFn);

int ForwardConvJson(const char* function, const char* conv_id, int32_t conv_type, const char* json,
                    const char* json_name, bool optional, TIMCommCallback cb, void* user_data,
                    ConvRequest method) {
  Json::Value log = ConvLog(conv_id, conv_type);
  if (CallLogEnabled()) log[json_name] = LogText(json);
  return Forward(function, log, [&](Runtime& rt) -> int {
    std::string id;
    if (int code = CheckConv(conv_id, conv_type, &id)) return code;
    Json::Value param;
    if (int code = ParseParam(json, Json::objectValue, optional, &param)) return code;
    return (rt.backend().*method)(id, conv_type, param, rt.Result(function, cb, user_data));
  });
}

}  // namespace

extern "C" {

int TIMConvGetConvList(TIMCommCallback cb, void* user_data) {
  return ForwardPlain("TIMConvGetConvList", cb, user_data, &Backend::GetConvList);
}

int TIMConvCreate(const char* conv_id, int32_t conv_type, TIMCommCallback cb, void* user_data) {
  return Forward("TIMConvCreate", ConvLog(conv_id, conv_type), [&](Runtime& rt) -> int {
    std::string id;
    if (int code = CheckConv(conv_id, conv_type, &id)) return code;
    return rt.backend().CreateConv(id, conv_type, rt.Result("TIMConvCreate", cb, user_data));
  });
}

int TIMConvDelete(const char* conv_id, int32_t conv_type, TIMCommCallback cb, void* user_data) {
  return Forward("TIMConvDelete", ConvLog(conv_id, conv_type), [&](Runtime& rt) -> int {
    std::string id;
    if (int code = CheckConv(conv_id, conv_type, &id)) return code;
    return rt.backend().DeleteConv(id, conv_type, rt.Result("TIMConvDelete", cb, user_data));
  });
}

int TIMMsgSendNewMsg(const char* conv_id, int32_t conv_type, const char* json_msg_param,
                     TIMCommCallback cb, void* user_data) {
  return ForwardConvJson("TIMMsgSendNewMsg", conv_id, conv_type, json_msg_param, "json_msg_param",
                         false, cb, user_data, &Backend::SendMessage);
}

int TIMMsgGetMsgList(const char* conv_id, int32_t conv_type, const char* json_get_msg_param,
                     TIMCommCallback cb, void* user_data) {
  return ForwardConvJson("TIMMsgGetMsgList", conv_id, conv_type, json_get_msg_param,
                         "json_get_msg_param", false, cb, user_data, &Backend::GetMessages);
}

int TIMMsgReportReaded(const char* conv_id, int32_t conv_type, const char* json_msg_param,
                       TIMCommCallback cb, void* user_data) {
  return ForwardConvJson("TIMMsgReportReaded", conv_id, conv_type, json_msg_param, "json_msg_param",
                         true, cb, user_data, &Backend::ReportRead);
}

int TIMMsgDownloadElemToPath(const char* json_download_elem_param, const char* path,
                             TIMCommCallback cb, void* user_data) {
  Json::Value log(Json::objectValue);
  if (CallLogEnabled()) {
    log["json_download_elem_param"] = LogText(json_download_elem_param);
    log["path"] = LogText(path);
  }
  return Forward("TIMMsgDownloadElemToPath", log, [&](Runtime& rt) -> int {
    Json::Value param;
    if (int code = ParseParam(json_download_elem_param, Json::objectValue, false, &param)) {
      return code;
    }
    if (path == nullptr || *path == '\0') return static_cast<int>(TIM_ERR_INVALID_PARAM);
    size_t length = strnlen(path, 4097);
    if (length > 4096) return static_cast<int>(TIM_ERR_INVALID_PARAM);
    return rt.backend().Download(param, std::string(path, length),
                                 rt.Result("TIMMsgDownloadElemToPath", cb, user_data));
  });
}

}  // extern "C"

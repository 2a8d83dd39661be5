#include "imsdk/outgoing_elems.h"

#include "imsdk/im_sdk.h"
#include "imsdk/json_util.h"

namespace imsdk {

int CheckOutgoingElems(const Json::Value& elems) {
  if (!elems.isArray() || elems.empty() || elems.size() > 16) return TIM_ERR_INVALID_JSON;
  for (const auto& elem : elems) {
    if (!elem.isObject()) return TIM_ERR_INVALID_JSON;
    ParamReader reader(elem);
    if (!reader.Has("elem_type")) return TIM_ERR_INVALID_JSON;
    int64_t type = reader.Int64("elem_type", -1);
    const char* required = nullptr;
    switch (type) {
      case kTIMElem_Text:
        required = "text_elem_content";
        break;
      case kTIMElem_Image:
        required = "image_elem_orig_path";
        break;
      case kTIMElem_Custom:
        required = "custom_elem_data";
        break;
      case kTIMElem_File:
        required = "file_elem_file_path";
        reader.String("file_elem_file_name");
        break;
      default:
        return TIM_ERR_INVALID_JSON;
    }
    if (!reader.Has(required)) return TIM_ERR_INVALID_JSON;
    reader.String(required);
    if (!reader.ok()) return TIM_ERR_INVALID_JSON;
  }
  return TIM_SUCC;
}

Json::Value FailedSendEcho(Json::Value msg, const std::string& conv_id, int conv_type,
                           const std::string& sender) {
  msg["message_conv_id"] = conv_id;
  msg["message_conv_type"] = conv_type;
  msg["message_sender"] = sender;
  msg["message_is_from_self"] = true;
  msg["message_status"] = kTIMMsg_SendFail;
  return msg;
}

}  // namespace imsdk

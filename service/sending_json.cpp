#include "service/sending_json.h"

#include <chrono>
#include <ctime>

#include "service/sdk_text.h"

namespace service {

uint64_t NowSeconds() {
  return static_cast<uint64_t>(std::time(nullptr));
}

uint64_t NowMilliseconds() {
  using namespace std::chrono;
  return static_cast<uint64_t>(
      duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

Json::Value MessageHeader(const WString& sender, const WString& convId, uint32_t convType,
                          uint64_t now) {
  Json::Value message(Json::objectValue);
  message["message_sender"] = Utf8(sender);
  message["message_client_time"] = Json::UInt64(now);
  message["message_server_time"] = Json::UInt64(now);
  message["message_conv_id"] = Utf8(convId);
  message["message_is_from_self"] = true;
  message["message_conv_type"] = convType;
  return message;
}

Json::Value DrawingFilePayload(const DrawingMsgStru& drawing, const WString& fromUserId,
                               uint64_t ts) {
  Json::Value data(Json::objectValue);
  data["fileId"] = drawing.fileId;
  data["fileMd5"] = Utf8(drawing.fileMd5);
  data["fileName"] = Utf8(drawing.fileName);
  data["filePath"] = Utf8(drawing.filePath);
  data["fileRefId"] = Utf8(drawing.fileRefId);
  data["fileSize"] = drawing.fileSize;
  data["fileType"] = Utf8(drawing.fileType);
  data["fromUserId"] = Utf8(drawing.fromUserId.empty() ? fromUserId : drawing.fromUserId);
  data["subType"] = kSentDrawingSubType;
  data["ts"] = Json::UInt64(ts);
  data["type"] = drawing.type;
  Json::Value payload(Json::objectValue);
  payload["msgType"] = static_cast<uint32_t>(kDrawingMsgFile);
  payload["data"] = data;
  return payload;
}

Json::Value CustomElem(const std::string& data) {
  Json::Value elem(Json::objectValue);
  elem["elem_type"] = 3;
  elem["custom_elem_data"] = data;
  return elem;
}

std::string StyledText(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "\t";
  return Json::writeString(writer, value);
}

std::string CompactText(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

}  // namespace service

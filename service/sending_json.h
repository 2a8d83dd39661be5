#pragma once
// The JSON the module writes when it sends: the message header, the drawing
// payload and the custom element that carries a payload.

#include <json/json.h>

#include <cstdint>
#include <string>

#include "platform/strings.h"
#include "records/drawing_msg.h"

namespace service {

// The platform number the module writes into message_platform.
inline constexpr uint32_t kMessagePlatform = 0;
// What a drawing sent to a conversation carries: a drawing file (msgType 1)
// of sub-type 1, the kind that the view shows as a drawing and that makes the
// receivers reload their groups (the group's cloud space changed).
inline constexpr uint32_t kSentDrawingSubType = 1;

uint64_t NowSeconds();
// A drawing payload's `ts`: milliseconds since 1970 (the payload's clock is
// finer than the message header's seconds).
uint64_t NowMilliseconds();

// message_sender, message_client_time, message_server_time (both `now`),
// message_conv_id, message_is_from_self (true), message_conv_type.
Json::Value MessageHeader(const WString& sender, const WString& convId, uint32_t convType,
                          uint64_t now);

// {"msgType": 1, "data": {fileId, fileMd5, fileName, filePath, fileRefId,
// fileSize, fileType, fromUserId, subType, ts, type}}. `fromUserId` stands in
// for an empty drawing.fromUserId.
Json::Value DrawingFilePayload(const DrawingMsgStru& drawing, const WString& fromUserId,
                               uint64_t ts);

// elem_type 3 with `data` as custom_elem_data (UTF-8 text).
Json::Value CustomElem(const std::string& data);

// Indented (styled) text, as the SDK gets a message; and compact text, as a
// payload travels inside an element.
std::string StyledText(const Json::Value& value);
std::string CompactText(const Json::Value& value);

}  // namespace service

#pragma once
// Messages as the SDK reports them, converted into MessageStru records.

#include <json/json.h>

#include <string_view>
#include <vector>

#include "records/drawing_payload.h"
#include "records/message_records.h"

namespace records {

// One message object. Header keys first, then message_elem_array in order:
// every element gets the message's conv_id, is_from_self and platform, and a
// custom element that is neither a drawing file nor a shared-chat message is
// not kept but counted in dropped_custom_count. A fault (a value of the wrong
// type) is traced as MessageStru and stops the message there; the record
// keeps what was filled, elements before the faulty one included. False on a
// fault.
bool ParseMessage(const Json::Value& json, MessageStru& out, const ReceiveOptions& options = {});

// The echoed message of a send result: only message_sender,
// message_server_time, message_conv_id, message_conv_type, message_platform
// and message_elem_array are read, drawing payloads are never acted on. A
// fault is traced as SaveSelfMsgToMap.
bool ParseSelfMessage(const Json::Value& json, MessageStru& out);

// A JSON array of messages (the receive and history callbacks), appended to
// `out` in array order, faulty messages included as far as they were read.
// False when the text is not JSON or not an array.
bool ParseMessageArray(std::string_view text, std::vector<MessageStru>& out,
                       const ReceiveOptions& options = {});

// conv_id and conv_type are read as booleans (see MessageLocator). A fault is
// traced as MessageLocator.
bool ParseMessageLocator(const Json::Value& json, MessageLocator& out);

}  // namespace records

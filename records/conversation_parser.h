#pragma once

#include <json/json.h>

#include <string_view>
#include <vector>

#include "records/conversation_records.h"

namespace records {

// conv_last_msg goes through the message parser (never acting on drawing
// payloads); without it last_msg stays empty. A fault is traced as
// ConversationInfo_Stru.
bool ParseConversation(const Json::Value& json, ConversationInfo_Stru& out);

// A JSON array of conversations; false when not JSON or not an array.
bool ParseConversationArray(std::string_view text, std::vector<ConversationInfo_Stru>& out);

}  // namespace records

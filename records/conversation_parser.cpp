#include "records/conversation_parser.h"

#include "records/json_reader.h"
#include "records/message_parser.h"

namespace records {

bool ParseConversation(const Json::Value& json, ConversationInfo_Stru& out) {
  return GuardRecord("ConversationInfo_Stru", [&] {
    Read(json, "conv_id", out.conv_id);
    Read(json, "conv_type", out.conv_type);
    Read(json, "conv_owner", out.owner);
    Read(json, "conv_unread_num", out.unread_num);
    Read(json, "conv_active_time", out.active_time);
    Read(json, "conv_is_has_lastmsg", out.has_last_msg);
    ParseMessage(Member(json, "conv_last_msg"), out.last_msg);
    Read(json, "conv_is_has_draft", out.has_draft);
  });
}

bool ParseConversationArray(std::string_view text, std::vector<ConversationInfo_Stru>& out) {
  return ParseArrayText(text, out, ParseConversation, "conversation array");
}

}  // namespace records

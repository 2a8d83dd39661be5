#include "records/message_parser.h"

#include "records/elem_parser.h"
#include "records/group_tips_reader.h"
#include "records/json_reader.h"

namespace records {
namespace {

void ReadElems(const Json::Value& json, MessageStru& msg, const ReceiveOptions& options) {
  const Json::Value& array = Member(json, "message_elem_array");
  const auto size = static_cast<Json::ArrayIndex>(
      AllowedEntries("message_elem_array", array.size(), kMaxElemsPerMessage));
  msg.elems.reserve(size);
  for (Json::ArrayIndex i = 0; i < size; ++i) {
    ElemStru elem;
    elem.conv_id = msg.conv_id;
    elem.is_from_self = msg.is_from_self;
    elem.platform = msg.platform;
    ParseElem(array[i], elem, options);
    if (IsKeptElement(elem)) {
      msg.elems.push_back(std::move(elem));
    } else {
      ++msg.dropped_custom_count;
    }
  }
}

}  // namespace

bool ParseMessage(const Json::Value& json, MessageStru& out, const ReceiveOptions& options) {
  return GuardRecord("MessageStru", [&] {
    Read(json, "message_conv_id", out.conv_id);
    Read(json, "message_conv_type", out.conv_type);
    Read(json, "message_sender", out.sender);
    Read(json, "message_server_time", out.server_time);
    Read(json, "message_is_from_self", out.is_from_self);
    Read(json, "message_platform", out.platform);
    Read(json, "message_is_read", out.is_read);
    Read(json, "message_status", out.status);
    Read(json, "message_unique_id", out.unique_id);
    ReadUserProfileBrief(Member(json, "message_sender_profile"), out.sender_profile);
    ReadElems(json, out, options);
  });
}

bool ParseSelfMessage(const Json::Value& json, MessageStru& out) {
  return GuardRecord("SaveSelfMsgToMap", [&] {
    Read(json, "message_sender", out.sender);
    Read(json, "message_server_time", out.server_time);
    Read(json, "message_conv_id", out.conv_id);
    Read(json, "message_conv_type", out.conv_type);
    Read(json, "message_platform", out.platform);
    ReadElems(json, out, ReceiveOptions{});
  });
}

bool ParseMessageArray(std::string_view text, std::vector<MessageStru>& out,
                       const ReceiveOptions& options) {
  return ParseArrayText(
      text, out,
      [&](const Json::Value& entry, MessageStru& msg) { ParseMessage(entry, msg, options); },
      "message array", kMaxMessagesPerText);
}

bool ParseMessageLocator(const Json::Value& json, MessageLocator& out) {
  return GuardRecord("MessageLocator", [&] {
    Read(json, "message_locator_conv_id", out.conv_id);
    Read(json, "message_locator_conv_type", out.conv_type);
    Read(json, "message_locator_is_revoked", out.is_revoked);
    Read(json, "message_locator_time", out.time);
    Read(json, "message_locator_seq", out.seq);
    Read(json, "message_locator_is_self", out.is_self);
    Read(json, "message_locator_rand", out.rand);
    Read(json, "message_locator_unique_id", out.unique_id);
  });
}

}  // namespace records

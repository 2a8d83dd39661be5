#include "records/drawing_payload.h"

#include "records/json_reader.h"

namespace records {
namespace {

void ReadDrawingFile(const Json::Value& data, DrawingMsgStru& out) {
  Read(data, "fileId", out.fileId);
  Read(data, "fileName", out.fileName);
  Read(data, "filePath", out.filePath);
  Read(data, "fileSize", out.fileSize);
  Read(data, "fileType", out.fileType);
  Read(data, "fileMd5", out.fileMd5);
  Read(data, "fileRefId", out.fileRefId);
  Read(data, "type", out.type);
  Read(data, "subType", out.subType);
  Read(data, "fromUserId", out.fromUserId);
  Read(data, "ts", out.ts);
}

void ReadSharedChatMessage(const Json::Value& data, DrawingMsgStru& out) {
  Read(data, "type", out.type);
  Read(data, "subType", out.subType);
  Read(data, "fromUserId", out.fromUserId);
  Read(data, "content", out.content);
  Read(data, "fromUserName", out.fromUserName);
  Read(data, "ts", out.ts);
  // Optional and not part of what is stored: a malformed instruction is
  // ignored rather than costing the message.
  const Json::Value& instruct = Member(data, "instruct");
  if (instruct.isUInt()) out.instruct = instruct.asUInt();
}

bool IsChatDrawingChange(uint32_t sub_type) {
  return sub_type >= 2 && sub_type <= 5;
}

}  // namespace

bool ParseDrawingMsg(const Json::Value& payload, DrawingMsgStru& out) {
  return GuardRecord("DrawingMsgStru", [&] {
    Read(payload, "msgType", out.msgType);
    const Json::Value& data = Member(payload, "data");
    switch (out.msgType) {
      case kDrawingMsgFile:
        ReadDrawingFile(data, out);
        break;
      case kDrawingMsgSharedChat:
        ReadSharedChatMessage(data, out);
        break;
      case kDrawingMsgSyncInstruct:
        Read(data, "subType", out.subType);
        break;
      default:
        break;
    }
  });
}

void ReceiveDrawingMsg(std::string_view payload_text, const WString& conv_id,
                       const ReceiveOptions& options, DrawingMsgStru& out) {
  Json::Value payload;
  if (!ParseJsonText(payload_text, payload)) return;
  if (!ParseDrawingMsg(payload, out) || !options.handler) return;
  if (out.msgType == kDrawingMsgSyncInstruct && options.act_on_sync && out.subType == 0) {
    options.handler->OnDrawingSync(conv_id, out, payload);
  } else if (out.msgType == kDrawingMsgSharedChat && IsChatDrawingChange(out.subType)) {
    options.handler->OnChatDrawingUpdate(conv_id, out, payload);
  }
}

}  // namespace records

#pragma once
// Reading the drawing payload of a custom element on the receiving side.
//
// The parser itself never calls the host. What a received payload asks of the
// host (a drawing-sync instruction, a shared-chat drawing update) is handed to
// a DrawingPayloadHandler that the service layer supplies; it is called right
// after the payload has been read, while the message is being parsed, so the
// host sees the instructions in message and element order.

#include <json/json.h>

#include <string_view>

#include "platform/strings.h"
#include "records/drawing_msg.h"

class DrawingPayloadHandler {
 public:
  virtual ~DrawingPayloadHandler() = default;
  // msgType 3 with subType 0, only while act-on-sync is set. The handler asks
  // the host for its shared chat and the conversation of its current shared
  // drawing, and calls the host's drawing sync when that equals `conv_id`.
  virtual void OnDrawingSync(const WString& conv_id, const DrawingMsgStru& drawing,
                             const Json::Value& payload) = 0;
  // msgType 2 with subType 2, 3, 4 or 5: the host's chat-drawing update.
  virtual void OnChatDrawingUpdate(const WString& conv_id, const DrawingMsgStru& drawing,
                                   const Json::Value& payload) = 0;
};

// How a received message is read. The receiving side decides when to act on
// drawing-sync instructions; the self-message parser never does.
struct ReceiveOptions {
  bool act_on_sync = false;
  DrawingPayloadHandler* handler = nullptr;  // none: payloads are only read
};

namespace records {

// Fills `out` from the payload object: msgType at the top, the kind's fields
// from `data`. A fault is traced as DrawingMsgStru and keeps what was read.
bool ParseDrawingMsg(const Json::Value& payload, DrawingMsgStru& out);

// The custom element's payload text: parses it (text that is not JSON leaves
// `out` at its defaults, so the message filter drops the element), then hands
// what the host must act on to `options.handler`.
void ReceiveDrawingMsg(std::string_view payload_text, const WString& conv_id,
                       const ReceiveOptions& options, DrawingMsgStru& out);

}  // namespace records

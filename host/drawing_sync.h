#pragma once
// What a received drawing-sync payload asks of the host. The service layer
// parses the payload and calls this on the window thread.

#include <cstdint>

#include "platform/strings.h"

namespace host {

struct ReceivedDrawingSync {
  WString target;        // the conversation the message belongs to
  uint32_t msgType = 0;  // 2 = message of a shared chat, 3 = sync instruction
  int32_t subType = 0;   // the instruction within the kind
  WString sender;        // fromUserId
  WString content;       // the payload text handed on to the host
};

enum class DrawingSyncRoute {
  kIgnored,            // other conversation, no app service, or nothing to do
  kSendDrawingSync,    // kind 3, instruction 0
  kUpdateDrawingInfo,  // kind 2, instructions 2 to 5
  kApplyDrawingSync,   // any other instruction of kind 2
};

// Acts only when the host's session key equals `target` (whole UTF-16
// strings). Host failures are traced only.
DrawingSyncRoute HandleReceivedDrawingSync(const ReceivedDrawingSync& message);

}  // namespace host

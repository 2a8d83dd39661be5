#pragma once
// The module's own custom message: the JSON text carried in a custom element
// (elem_type 3) for drawings sent to a conversation and for the shared chat on
// a drawing. Top level `msgType`, the rest read from the object under `data`.

#include <cstdint>

#include "platform/strings.h"

// Values of DrawingMsgStru::msgType.
enum DrawingMsgType : uint32_t {
  kDrawingMsgUnknown = 0,
  kDrawingMsgFile = 1,         // a drawing file sent to the conversation
  kDrawingMsgSharedChat = 2,   // a message of the shared chat on a drawing
  kDrawingMsgSyncInstruct = 3  // a drawing-sync instruction; never kept in a message
};

struct DrawingMsgStru {
  uint32_t msgType = 0;
  int32_t fileId = 0;
  WString fileName;
  WString filePath;  // the local copy's path once the drawing has been fetched
  int32_t fileSize = 0;
  WString fileType;
  WString fileMd5;
  WString fileRefId;
  uint32_t type = 0;
  uint32_t subType = 0;
  WString fromUserId;
  WString content;
  WString fromUserName;
  uint64_t ts = 0;
  // Shared-chat instruction (`data.instruct`) of msgType 2, handed on to the
  // drawing upload and shared-chat controller; 0 when absent or not a number.
  uint32_t instruct = 0;
  bool operator==(const DrawingMsgStru&) const = default;
};

#pragma once
// The main window's shared state about the open conversation: its id (the
// module starts with "error" so that no real conversation matches before one
// is opened), the peer's id and the type (1 one-to-one, 2 group). Set by the
// window on its thread; read by the service layer. Safe from any thread.

#include <cstdint>

#include "platform/strings.h"

namespace service {

inline const WString kNoConversation = u"error";

WString CurrentConvId();
WString CurrentPeerId();
uint32_t CurrentConvType();
// True when `convId` is the open conversation (exact comparison).
bool IsCurrentConversation(const WString& convId);

void SetCurrentConversation(const WString& convId, uint32_t convType);
void SetCurrentPeerId(const WString& peerId);
// Back to "error", no peer, type 0.
void ForgetCurrentConversation();

}  // namespace service

#pragma once
// At start-up the module gives the host its two callbacks.

#include "host/host_system.h"

namespace host {

// SetDrawingMsgSender, then SetHostNotifyCallback. Skipped (false) without
// an app service.
bool RegisterModuleCallbacks(DrawingMsgSender sender, HostNotifyCallback recentConversations);

}  // namespace host

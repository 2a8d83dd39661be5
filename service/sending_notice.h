#pragma once
// The notice line added to a conversation when a send fails, chosen by the
// SDK's code.

#include <cstdint>

#include "platform/strings.h"

namespace service {

// 20010 names the peer, 9519 blames the network, 20011 a removed friendship,
// any other non-zero code gives the plain text. Code 0 has no notice (empty).
WString SendFailureNotice(int32_t code, const WString& peerName);

}  // namespace service

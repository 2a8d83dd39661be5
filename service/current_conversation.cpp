#include "service/current_conversation.h"

#include <mutex>

namespace service {
namespace {

struct OpenConversation {
  std::mutex mutex;
  WString conv_id = kNoConversation;
  WString peer_id;
  uint32_t conv_type = 0;
};

OpenConversation& State() {
  static auto* state = new OpenConversation;
  return *state;
}

}  // namespace

WString CurrentConvId() {
  std::lock_guard lock(State().mutex);
  return State().conv_id;
}

WString CurrentPeerId() {
  std::lock_guard lock(State().mutex);
  return State().peer_id;
}

uint32_t CurrentConvType() {
  std::lock_guard lock(State().mutex);
  return State().conv_type;
}

bool IsCurrentConversation(const WString& convId) {
  std::lock_guard lock(State().mutex);
  return State().conv_id == convId;
}

void SetCurrentConversation(const WString& convId, uint32_t convType) {
  std::lock_guard lock(State().mutex);
  State().conv_id = convId;
  State().conv_type = convType;
}

void SetCurrentPeerId(const WString& peerId) {
  std::lock_guard lock(State().mutex);
  State().peer_id = peerId;
}

void ForgetCurrentConversation() {
  std::lock_guard lock(State().mutex);
  State().conv_id = kNoConversation;
  State().peer_id.clear();
  State().conv_type = 0;
}

}  // namespace service

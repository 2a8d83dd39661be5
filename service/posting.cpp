#include "service/posting.h"

#include <utility>

#include "platform/trace.h"

namespace service {

void TraceLostPost(unsigned msg) {
  platform::Trace("PostMessage %u failed: the chat window is gone, the message is dropped", msg);
}

bool Post(platform::WindowHandle window, unsigned msg, platform::WPARAM wParam,
          platform::LPARAM lParam) {
  if (platform::PostMessage(window, msg, wParam, lParam)) return true;
  TraceLostPost(msg);
  return false;
}

namespace {

template <size_t... I>
bool DropAny(unsigned msg, platform::WPARAM wParam, platform::LPARAM lParam,
             std::index_sequence<I...>) {
  return (
      (msg == kPayloadMessages[I] && (DropPostedOf<kPayloadMessages[I]>(wParam, lParam), true)) ||
      ...);
}

}  // namespace

bool DropPosted(unsigned msg, platform::WPARAM wParam, platform::LPARAM lParam) {
  return DropAny(msg, wParam, lParam, std::make_index_sequence<std::size(kPayloadMessages)>{});
}

}  // namespace service

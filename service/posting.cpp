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

constexpr bool IsListed(unsigned msg) {
  for (unsigned listed : kPayloadMessages) {
    if (listed == msg) return true;
  }
  return false;
}

// A message given a payload in the table but missing from the list would
// leak whenever the window drops it.
template <unsigned First, size_t... I>
constexpr bool EveryPayloadListed(std::index_sequence<I...>) {
  return ((!CarriesPayload<First + I> || IsListed(First + I)) && ...);
}
static_assert(EveryPayloadListed<3000>(std::make_index_sequence<300>{}));

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

#include "service/posting.h"

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

}  // namespace service

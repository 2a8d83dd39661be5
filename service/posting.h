#pragma once
// Posting heap payloads to the chat window. The sender allocates, posts and
// forgets; the receiver adopts and frees. A post that fails (no window, window
// gone) loses the payload: it is freed here and traced, never leaked, never
// retried.

#include <memory>

#include "platform/window_messages.h"

namespace service {

// Traces a failed post of `msg`.
void TraceLostPost(unsigned msg);

// Posts a message without payload; a failure is traced.
bool Post(platform::WindowHandle window, unsigned msg, platform::WPARAM wParam = 0,
          platform::LPARAM lParam = 0);

// Posts `payload` as the first parameter (and `second` as the second).
template <typename T>
bool PostOwned(platform::WindowHandle window, unsigned msg, std::unique_ptr<T> payload,
               platform::LPARAM second = 0) {
  auto wParam = reinterpret_cast<platform::WPARAM>(payload.get());
  if (!platform::PostMessage(window, msg, wParam, second)) {
    TraceLostPost(msg);
    return false;  // `payload` frees itself
  }
  payload.release();  // the receiver owns it now
  return true;
}

// Two payloads in the two parameters (3193: conversation id and new name).
template <typename A, typename B>
bool PostOwnedPair(platform::WindowHandle window, unsigned msg, std::unique_ptr<A> first,
                   std::unique_ptr<B> second) {
  auto wParam = reinterpret_cast<platform::WPARAM>(first.get());
  auto lParam = reinterpret_cast<platform::LPARAM>(second.get());
  if (!platform::PostMessage(window, msg, wParam, lParam)) {
    TraceLostPost(msg);
    return false;
  }
  first.release();
  second.release();
  return true;
}

// The receiver's side: takes ownership of a payload posted with PostOwned.
template <typename T>
std::unique_ptr<T> AdoptPayload(platform::WPARAM wParam) {
  return std::unique_ptr<T>(reinterpret_cast<T*>(wParam));
}
template <typename T>
std::unique_ptr<T> AdoptPayload(platform::LPARAM lParam) {
  return std::unique_ptr<T>(reinterpret_cast<T*>(lParam));
}

}  // namespace service

#pragma once
// Posting to the chat window. The sender allocates, posts and forgets; the
// receiver adopts and frees. A post that fails (no window, window gone) loses
// the payload: it is freed here and traced, never leaked, never retried.
// What each message carries is the table in service/window_payloads.h.

#include <memory>
#include <type_traits>
#include <utility>

#include "platform/window_messages.h"
#include "service/window_payloads.h"

namespace service {

// Traces a failed post of `msg`.
void TraceLostPost(unsigned msg);

// The untyped form, for a message number chosen at run time. It must be
// one without payload (Post<msg> checks that at compile time).
bool Post(platform::WindowHandle window, unsigned msg, platform::WPARAM wParam = 0,
          platform::LPARAM lParam = 0);

// Posts a message without payload; a failure is traced.
template <unsigned Msg>
requires(!CarriesPayload<Msg>) bool Post(platform::WindowHandle window, platform::WPARAM wParam = 0,
                                         platform::LPARAM lParam = 0) {
  return Post(window, Msg, wParam, lParam);
}

// Posts `value` stamped with `session` as the first parameter.
template <unsigned Msg>
requires(FirstPayload<Msg> && !SecondPayload<Msg>) bool PostPayload(platform::WindowHandle window,
                                                                    SessionStamp session,
                                                                    PayloadOf<Msg> value) {
  auto payload = std::make_unique<PostedOf<Msg>>(PostedOf<Msg>{session, std::move(value)});
  if (!platform::PostMessage(window, Msg, reinterpret_cast<platform::WPARAM>(payload.get()), 0)) {
    TraceLostPost(Msg);
    return false;  // `payload` frees itself
  }
  payload.release();  // the receiver owns it now
  return true;
}

// Two payloads in the two parameters, both stamped.
template <unsigned Msg>
requires(FirstPayload<Msg>&& SecondPayload<Msg>) bool PostPayload(platform::WindowHandle window,
                                                                  SessionStamp session,
                                                                  PayloadOf<Msg> first,
                                                                  SecondPayloadOf<Msg> second) {
  auto a = std::make_unique<PostedOf<Msg>>(PostedOf<Msg>{session, std::move(first)});
  auto b = std::make_unique<PostedSecondOf<Msg>>(PostedSecondOf<Msg>{session, std::move(second)});
  if (!platform::PostMessage(window, Msg, reinterpret_cast<platform::WPARAM>(a.get()),
                             reinterpret_cast<platform::LPARAM>(b.get()))) {
    TraceLostPost(Msg);
    return false;
  }
  a.release();
  b.release();
  return true;
}

// A plain first parameter and a payload in the second.
template <unsigned Msg>
requires(!FirstPayload<Msg> && SecondPayload<Msg>) bool PostPayload(platform::WindowHandle window,
                                                                    SessionStamp session,
                                                                    platform::WPARAM wParam,
                                                                    SecondPayloadOf<Msg> second) {
  auto b = std::make_unique<PostedSecondOf<Msg>>(PostedSecondOf<Msg>{session, std::move(second)});
  if (!platform::PostMessage(window, Msg, wParam, reinterpret_cast<platform::LPARAM>(b.get()))) {
    TraceLostPost(Msg);
    return false;
  }
  b.release();
  return true;
}

// The receiver's side: takes ownership of what PostPayload<Msg> posted.
template <unsigned Msg>
requires FirstPayload<Msg> std::unique_ptr<PostedOf<Msg>> AdoptPosted(platform::WPARAM wParam) {
  return std::unique_ptr<PostedOf<Msg>>(reinterpret_cast<PostedOf<Msg>*>(wParam));
}
template <unsigned Msg>
requires SecondPayload<Msg> std::unique_ptr<PostedSecondOf<Msg>> AdoptPostedSecond(
    platform::LPARAM lParam) {
  return std::unique_ptr<PostedSecondOf<Msg>>(reinterpret_cast<PostedSecondOf<Msg>*>(lParam));
}

// Frees both payloads of a table message.
template <unsigned Msg>
requires CarriesPayload<Msg>
void DropPostedOf(platform::WPARAM wParam, platform::LPARAM lParam) {
  if constexpr (FirstPayload<Msg>) AdoptPosted<Msg>(wParam);
  if constexpr (SecondPayload<Msg>) AdoptPostedSecond<Msg>(lParam);
}

// Frees the payload of `msg`, whatever it is; false when `msg` carries none.
bool DropPosted(unsigned msg, platform::WPARAM wParam, platform::LPARAM lParam);

}  // namespace service

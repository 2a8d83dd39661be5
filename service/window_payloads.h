#pragma once
// The one table of what the chat window's custom messages carry. A sender
// posts with PostPayload<message>, the window takes with AdoptPosted<message>;
// the table names the type between them, so a sender and a receiver that
// disagree about a payload do not compile. A message without an entry carries
// no payload, and posting one with it does not compile either.
//
// Every payload travels inside a Posted<T> together with the session stamp of
// the sign-in it was made in. The window drops a session-bound payload whose
// session has ended: a logout came between posting and handling, and the
// payload belongs to a user who is gone.

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include "platform/strings.h"
#include "platform/window_messages.h"
#include "records/message_records.h"
#include "service/sdk_event_record.h"
#include "service/service_records.h"

namespace service {

// 0 is never a session: payloads that belong to none carry it.
using SessionStamp = uint64_t;
inline constexpr SessionStamp kNoSession = 0;

template <typename T>
struct Posted {
  SessionStamp session = kNoSession;
  T value;
};

// The rectangle MoveIm hands to the window (screen coordinates).
struct WindowRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
};

// The modes of 3025 (refresh the message view).
enum class RefreshMode : platform::WPARAM {
  kRebuild = 0,
  kRebuildToEnd = 1,
  kReloadToEnd = 2,  // a message was sent or shown as sending
  kOlder = 3,
  kNewMessages = 4,  // the open conversation got messages
};

// One entry: the payload type in the first parameter (void: none), the type
// of a payload in the second parameter (void: none) and whether it belongs
// to a session.
template <typename T, bool SessionBound = true, typename Second = void>
struct PayloadEntry {
  using Type = T;
  using SecondType = Second;
  static constexpr bool kSessionBound = SessionBound;
};

template <unsigned Msg>
struct WindowPayload;  // no entry: no payload

namespace msg_ = platform::msg;
// clang-format off
template <> struct WindowPayload<msg_::kSdkEvent> : PayloadEntry<SdkEventRecord> {};
template <> struct WindowPayload<msg_::kMessageListArrived> : PayloadEntry<std::string> {};
template <> struct WindowPayload<msg_::kFriendDeleted> : PayloadEntry<std::string> {};
template <> struct WindowPayload<msg_::kConversationLogoChanged> : PayloadEntry<WString> {};
template <> struct WindowPayload<msg_::kConversationNameChanged> : PayloadEntry<WString, true, WString> {};
template <> struct WindowPayload<msg_::kDrawingSyncNotice> : PayloadEntry<MessageStru> {};
template <> struct WindowPayload<msg_::kFriendRequestHandled> : PayloadEntry<FriendRequestResult> {};
template <> struct WindowPayload<msg_::kConversationSummaryChanged> : PayloadEntry<WString> {};
// Posted by the window's own panes and by MoveIm: not tied to a sign-in.
template <> struct WindowPayload<msg_::kConversationDatum> : PayloadEntry<WString, false> {};
template <> struct WindowPayload<msg_::kMoveWindow> : PayloadEntry<WindowRect, false> {};
// The new remark in the second parameter.
template <> struct WindowPayload<msg_::kFriendRemarkChanged> : PayloadEntry<void, false, WString> {};
// clang-format on

// Every message above, for code that must free any payload (DropPosted;
// posting.cpp checks at compile time that none is missing).
inline constexpr unsigned kPayloadMessages[] = {msg_::kSdkEvent,
                                                msg_::kMessageListArrived,
                                                msg_::kFriendDeleted,
                                                msg_::kConversationLogoChanged,
                                                msg_::kConversationNameChanged,
                                                msg_::kDrawingSyncNotice,
                                                msg_::kFriendRequestHandled,
                                                msg_::kConversationSummaryChanged,
                                                msg_::kConversationDatum,
                                                msg_::kMoveWindow,
                                                msg_::kFriendRemarkChanged};

template <unsigned Msg>
concept CarriesPayload = requires {
  typename WindowPayload<Msg>::Type;
};

template <unsigned Msg>
using PayloadOf = typename WindowPayload<Msg>::Type;
template <unsigned Msg>
using SecondPayloadOf = typename WindowPayload<Msg>::SecondType;

// A payload in the first parameter; one in the second.
template <unsigned Msg>
concept FirstPayload = CarriesPayload<Msg> && !std::is_void_v<PayloadOf<Msg>>;
template <unsigned Msg>
concept SecondPayload = CarriesPayload<Msg> && !std::is_void_v<SecondPayloadOf<Msg>>;

template <unsigned Msg>
using PostedOf = Posted<PayloadOf<Msg>>;
template <unsigned Msg>
using PostedSecondOf = Posted<SecondPayloadOf<Msg>>;

}  // namespace service

#pragma once
// The shared chat on a drawing (IMWnd_SharedChatBtn, and ShareDwg's shared
// chat on a drawing of the group's space).
//
// Start asks the host whether the user and the peer (or the group) are in a
// shared session already. The user in this conversation's session already
// is not joined again (kEntered: the window only goes compact); a session
// that runs for the conversation is joined; in a group without one the caller lets the user choose
// a drawing of the group's space (ShareDwg) and calls Enter with it. Entering checks the session's
// room (CheckSharedSession), joins it (JoinSharedSession) and opens the drawing in the host
// (EnterSharedDrawing); the caller then turns the chat window to its compact layout. Failures are
// told with the module's message box through `prompt`.
//
// Window thread only.

#include <cstdint>

#include "host/host_records.h"
#include "host/user_prompt.h"
#include "platform/strings.h"
#include "platform/window_messages.h"

class CChatTools;

namespace service::drawings {

enum class SharedChatStep {
  kUnavailable,    // no host, or the host is signed out (traced only)
  kQueryFailed,    // the state query failed (box)
  kOtherSession,   // the user is in another conversation's shared session (box)
  kChooseDrawing,  // a group without a session: the caller offers the space's drawings
  kNoPeerSession,  // one-to-one and the peer is in no session: nothing to join (box)
  kFull,           // the session has no room (box with its limit)
  kEnterFailed,    // joining or opening the drawing failed (box)
  kEntered,        // in the session; the window goes compact
};

// The drawing a session is on, and the host's token for the session.
struct SharedDrawing {
  int32_t groupId = -1;
  int32_t drawingId = -1;
  WString drawingRef;
  WString sessionText;
};

class SharedChat {
 public:
  SharedChat(CChatTools& tools, host::UserPrompt& prompt) : tools_(tools), prompt_(prompt) {}

  // Records "IM-ShareChat", then the state query and, when a session runs
  // for the conversation, Enter with it.
  SharedChatStep Start(const WString& convId, uint32_t convType, platform::WindowHandle owner);
  // Starts (or joins) the session on `drawing`.
  SharedChatStep Enter(const WString& convId, const SharedDrawing& drawing,
                       platform::WindowHandle owner);

  // The token a new session on a drawing of the group's space gets.
  static WString NewSessionText(const WString& convId, int32_t drawingId);

 private:
  void Tell(const char* text);

  CChatTools& tools_;
  host::UserPrompt& prompt_;
};

}  // namespace service::drawings

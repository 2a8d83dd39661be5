#pragma once
// Leaving the host's shared chat on a drawing when the user logs out.

namespace host {

// When the host is in a shared session: LeaveSharedSession with the
// session's group id, drawing id and text, then EndSharedSession. Needs both
// services. True when a session was left.
bool LeaveSharedSessionAtLogout();

}  // namespace host

#pragma once
// The demo's world: the chat engine plays the server and the other users,
// the local host plays the drawing application's cloud services.

#include <cstdint>
#include <string>

#include "host/local/local_host.h"

namespace demo {

inline constexpr const char* kUser = "10001";       // the signed-in user
inline constexpr const char* kAnswering = "10002";  // friend who answers every text
inline constexpr const char* kQuiet = "10003";      // friend who only writes in the group
inline constexpr const char* kStranger = "10004";   // asks to become a friend
inline constexpr const char* kReplyPrefix = "收到：";
inline constexpr int kReplyDelayMs = 400;

struct World {
  std::string groupId;
};

// Accounts, friendships, the group with its first messages and the pending
// friend request, in the engine and (accounts) in the local host. The group
// reaches the local host through an EngineGroupLink, which the caller keeps.
World SeedWorld(host::local::LocalHost& host);

// The `ts` of a drawing payload sent now: milliseconds since 1970, as the
// module writes it.
uint64_t PayloadTimeNow();

}  // namespace demo

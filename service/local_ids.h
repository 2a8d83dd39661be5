#pragma once
// Rules of the local ids that the module gives the messages it sends and the
// notices it adds itself.

#include <cstdint>

namespace service {

// The highest local id; the count then restarts at 2.
inline constexpr uint32_t kLastLocalId = 4294967195u;  // 0xFFFFFF9B

// The id that follows `current`.
constexpr uint32_t LocalIdAfter(uint32_t current) {
  return current >= kLastLocalId ? 2u : current + 1u;
}

// The store's key for a row the module makes itself (a notice, or a sent
// message the SDK gave no unique id): a marker bit (62) that the SDK's small
// counters do not reach, the time in seconds (30 bits) and the local id, so
// that rows of different sessions do not meet. Kept below 2^63: the store
// keeps larger keys as floating-point values, where neighbours would collide.
constexpr uint64_t LocalUniqueId(uint32_t localId, uint64_t seconds) {
  return (uint64_t{1} << 62) | ((seconds & 0x3FFFFFFFu) << 32) | localId;
}

}  // namespace service

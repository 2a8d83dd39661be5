#pragma once
// One-to-one messages on the wire and back. A message carries a readable
// <body> for any XMPP client and, in its own namespaced element, the JSON
// element array exactly as the module built it (so a drawing payload reaches
// the peer untouched). A message from a client that knows nothing of that
// element is read from its body as one text element.
#include <json/json.h>

#include <cstdint>
#include <optional>
#include <string>

#include "imsdk/xmpp/stanza.h"

namespace imsdk::xmpp {

struct WireMessage {
  std::string from_bare;  // sender's bare JID (a group message: the room's)
  std::string nick;       // a group message: the sender's nick in the room
  std::string to_bare;
  std::string origin_id;     // the sender's id (XEP-0359), may be empty
  std::string archive_id;    // the archive's id for the owner's archive, may be empty
  uint64_t server_time = 0;  // from a delay stamp; 0 when delivered live
  Json::Value elems;         // array of element objects
};

// The readable fallback text of an element array.
std::string ReadableBody(const Json::Value& elems);

// Builds <message type="chat"> (or `type`) to `to` with id and origin-id
// `origin_id`.
Stanza BuildChatMessage(xmpp_ctx_t* ctx, const std::string& to, const std::string& origin_id,
                        const Json::Value& elems, const char* type = "chat");

// Reads a chat message (live, or the inner message of an archive result).
// `archive_owner` is the bare JID whose archive ids (<stanza-id by=...>) are
// trusted. Empty when the stanza holds no content (chat states, receipts,
// errors) or cannot be read; `why` then says why, for a trace.
std::optional<WireMessage> ReadChatMessage(xmpp_stanza_t* message, const std::string& archive_owner,
                                           std::string* why);
// Reads a message of a room (type "groupchat", from room/nick); the room's
// archive ids are trusted.
std::optional<WireMessage> ReadGroupMessage(xmpp_stanza_t* message, std::string* why);

// The id of the message a retraction (XEP-0424, versions 0 and 1) names;
// "" when `message` is no retraction.
std::string RetractedId(xmpp_stanza_t* message);
// True for a read marker or a retraction (no content of their own).
bool IsMarkerOrRetraction(xmpp_stanza_t* message);

// A message id for the C API: below 2^63 and the same whether the message
// arrives live or from the archive (derived from the sender, its nick in a
// room, and its origin-id, or else from the archive id).
uint64_t MessageIdFor(const WireMessage& msg);
// A stable 63-bit hash of a text.
uint64_t Hash63(const std::string& text);

// Seconds since 1970 of an XMPP date-time ("2026-11-23T12:00:00.123Z",
// offsets allowed); 0 when it does not parse.
uint64_t ParseStamp(const std::string& stamp);
// Seconds since the epoch as an XMPP date-time (UTC), e.g. for MAM's start.
std::string FormatStamp(uint64_t seconds);
// The <delay stamp> inside `st` (0 when none).
uint64_t DelayStamp(xmpp_stanza_t* st);

}  // namespace imsdk::xmpp

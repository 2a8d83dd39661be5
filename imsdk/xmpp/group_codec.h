#pragma once
// Groups as multi-user rooms: the stanzas that create, configure, join and
// bookmark a room, and the group objects and tips of the C API built from
// what the room tells.
#include <json/json.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "imsdk/xmpp/stanza.h"

namespace imsdk::xmpp {

namespace ns {
inline constexpr const char* kMuc = "http://jabber.org/protocol/muc";
inline constexpr const char* kMucUser = "http://jabber.org/protocol/muc#user";
inline constexpr const char* kMucAdmin = "http://jabber.org/protocol/muc#admin";
inline constexpr const char* kMucOwner = "http://jabber.org/protocol/muc#owner";
inline constexpr const char* kDiscoInfo = "http://jabber.org/protocol/disco#info";
inline constexpr const char* kRegister = "jabber:iq:register";
inline constexpr const char* kPubsub = "http://jabber.org/protocol/pubsub";
inline constexpr const char* kBookmarks = "urn:xmpp:bookmarks:1";
}  // namespace ns

// What this device knows of one room it belongs to.
struct RoomState {
  std::string name;
  // Members by user id: "owner", "admin" or "member".
  std::map<std::string, std::string> affiliations;
  uint64_t create_time = 0;
  bool joined = false;  // our occupant is in the room
  std::string Owner() const;
};

// The members-only, persistent, archived room configuration (owner form).
Stanza RoomConfigForm(xmpp_ctx_t* ctx, const std::string& name, bool full);
// Presence entering `room_jid` as `nick`, without replayed history.
Stanza JoinPresence(xmpp_ctx_t* ctx, const std::string& room_jid, const std::string& nick);
// muc#admin: set (or, with an empty affiliation, get the list of) affiliations.
Stanza AffiliationIq(xmpp_ctx_t* ctx, const std::string& room_jid, const std::string& jid,
                     const std::string& affiliation);
Stanza AffiliationListIq(xmpp_ctx_t* ctx, const std::string& room_jid,
                         const std::string& affiliation);
// A mediated invitation of `invitee_jid`, sent through the room.
Stanza InvitationMessage(xmpp_ctx_t* ctx, const std::string& room_jid,
                         const std::string& invitee_jid, const std::string& id);
Stanza DiscoInfoIq(xmpp_ctx_t* ctx, const std::string& jid);
// The room's name from a disco#info result.
std::string RoomNameOf(xmpp_stanza_t* disco_reply);
// Bookmarks (PEP node urn:xmpp:bookmarks:1, one item per room JID).
Stanza PublishBookmarkIq(xmpp_ctx_t* ctx, const std::string& room_jid, const std::string& name,
                         const std::string& nick);
Stanza RetractBookmarkIq(xmpp_ctx_t* ctx, const std::string& room_jid);
Stanza FetchBookmarksIq(xmpp_ctx_t* ctx);

// The C API's error code for a failed room request (null: no answer).
int GroupFailureCode(xmpp_stanza_t* reply);

// The C API's objects for rooms (through the builders every backend shares).
int MemberRole(const std::string& affiliation);
Json::Value RoomGroupObject(const std::string& id, const RoomState& room);
Json::Value RoomMemberObject(const std::string& user, const std::string& affiliation);
Json::Value RoomTipElem(int tip_type, const std::string& group_id, const RoomState& room,
                        const std::string& op_user, const std::vector<std::string>& users,
                        uint64_t time);
// A tip of type 6 with one change (flag 1 name, 5 owner).
Json::Value RoomChangeTipElem(const std::string& group_id, const RoomState& room,
                              const std::string& op_user, int flag, const std::string& value,
                              uint64_t time);
Json::Value RoomReportElem(int report_type, const std::string& group_id, const std::string& name,
                           const std::string& op_user);

}  // namespace imsdk::xmpp

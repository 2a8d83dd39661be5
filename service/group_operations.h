#pragma once
// The group operations the group windows start: each follows the group
// action chain (services, signed-in gate, GetGroupMembers, the role where
// members are removed or the group disbanded, the host call, then the chat
// request), tells a failure with its text and changes nothing else. After a
// success the groups are loaded again (host and chat); after leaving or
// disbanding, the group's conversation, its stored history and its page go.
// Window thread.

#include <vector>

#include "host/group_actions.h"
#include "host/group_lookup.h"
#include "host/owner_transfer.h"
#include "service/parts/group_roster.h"

class CChatTools;

namespace service {

class GroupOperations {
 public:
  explicit GroupOperations(CChatTools& tools) : tools_(tools) {}

  // The group at the host into the roster (the first step of the chain on
  // its own: the group windows show what it found).
  host::GroupLookup LookUp(const WString& groupId, const char* tag,
                           host::GroupQueryWording wording);

  // CreateCloudGroup ("Public") and then the chat group; false when the host
  // refused (the caller tells the user).
  bool Create(const WString& name, const CloudMemberList& members);
  host::GroupActionResult AddMembers(const WString& groupId, const CloudMemberList& members);
  host::GroupActionResult RemoveMembers(const WString& groupId, const CloudMemberList& members);
  host::GroupActionResult Rename(const WString& groupId, const WString& name);
  // The user leaves (the host's removal mode 2 with the user alone).
  host::GroupActionResult Leave(const WString& groupId);
  host::GroupActionResult Disband(const WString& groupId);
  host::OwnerTransferResult TransferOwner(const WString& groupId, const CloudGroupMember& newOwner);

  // The signed-in user as a member of the host's lists.
  CloudGroupMember Self() const;

 private:
  host::GroupActionResult Run(host::GroupActionRequest request, const char* tag);
  // The group lists again, and the group's roster when it is still joined.
  void Refresh(const WString& groupId);
  // The user is no longer in the group.
  void Forget(const WString& groupId);

  CChatTools& tools_;
};

}  // namespace service

#pragma once
// What the group windows (the member pickers, the group panel, the user
// cards opened from them) need of the service and the host: the user's
// friends, a group's details and members, and the group operations. Tests
// drive the windows through the real source against the local host and the
// engine; the module uses MakeGroupSource.

#include <memory>
#include <optional>
#include <vector>

#include "host/group_actions.h"
#include "host/group_lookup.h"
#include "host/owner_transfer.h"
#include "host/user_prompt.h"
#include "platform/strings.h"
#include "service/parts/group_roster.h"

class CChatTools;

namespace service {

// A person as a group window shows one.
struct GroupPerson {
  WString id;  // the chat user id
  int32_t accountId = -1;
  WString name;
  WString picture;  // a local picture file (or the default picture)
  bool owner = false;
  bool operator==(const GroupPerson&) const = default;
};

// A person's card (the user information dialogs).
struct PersonCard {
  GroupPerson person;
  WString remark;     // friends only
  WString signature;  // from the profile, when known
  bool isFriend = false;
  bool isUser = false;  // the signed-in user
};

class GroupSource {
 public:
  virtual ~GroupSource() = default;

  // Where the group windows ask and tell the user.
  virtual host::UserPrompt& Prompt() = 0;
  virtual WString UserId() const = 0;
  // In the service's order.
  virtual std::vector<GroupPerson> Friends() = 0;
  virtual std::optional<GroupPerson> FindFriend(const WString& id) = 0;
  virtual PersonCard CardOf(const WString& id) = 0;

  // The group at the host; a failure has been told to the user.
  virtual host::GroupLookup LookUpGroup(const WString& groupId,
                                        host::GroupQueryWording wording) = 0;
  // What the last look-up (or action) found; none before one.
  virtual std::optional<GroupSummary> Summary(const WString& groupId) const = 0;
  virtual std::vector<GroupPerson> Members(const WString& groupId) = 0;

  virtual bool CreateGroup(const WString& name, const std::vector<GroupPerson>& people) = 0;
  virtual host::GroupActionResult AddMembers(const WString& groupId,
                                             const std::vector<GroupPerson>& people) = 0;
  virtual host::GroupActionResult RemoveMembers(const WString& groupId,
                                                const std::vector<GroupPerson>& people) = 0;
  virtual host::GroupActionResult Rename(const WString& groupId, const WString& name) = 0;
  virtual host::GroupActionResult Leave(const WString& groupId) = 0;
  virtual host::GroupActionResult Disband(const WString& groupId) = 0;
  virtual host::OwnerTransferResult TransferOwner(const WString& groupId,
                                                  const GroupPerson& newOwner) = 0;

  // A user card's friend request (source "群成员", wording "加好友"); the
  // SDK call's result (0: accepted).
  virtual int RequestFriend(const WString& id) = 0;
};

std::unique_ptr<GroupSource> MakeGroupSource(CChatTools& tools);

}  // namespace service

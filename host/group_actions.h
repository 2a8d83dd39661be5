#pragma once
// The group action chain shared by the group service, the member pickers and
// the group panel: look the group up by its chat id, check the role where
// members are removed or the group disbanded, make the host call, and only
// after the host agreed let the chat side follow.

#include <functional>

#include "host/host_records.h"
#include "host/user_prompt.h"

namespace host {

enum class GroupAction {
  kRemoveMembers,  // the owner removes the selected members
  kLeave,          // the user leaves (members = the user alone)
  kDisband,
  kAddMembers,
  kRename,
};

struct GroupActionRequest {
  GroupAction action = GroupAction::kRename;
  WString imGroupId;
  CloudMemberList members;  // kRemoveMembers, kAddMembers, kLeave
  WString newName;          // kRename
};

enum class GroupActionResult {
  kUnavailable,       // no service or signed out: traced only
  kGroupQueryFailed,  // GetGroupMembers failed
  kRoleQueryFailed,
  kNotOwner,
  kHostFailed,  // the action itself failed
  kDone,        // host agreed; the chat-side request has been made
};

// The chat-side request (group service, friendship service) that follows a
// successful host call; it gets the group as the host described it.
using GroupChatFollowUp = std::function<void(const GroupDetail& group)>;

// `tag` is the caller's trace tag, e.g. "GroupFunction::LeaveGroup  error ".
GroupActionResult RunGroupAction(const GroupActionRequest& request, const char* tag,
                                 UserPrompt& prompt, const GroupChatFollowUp& followUp);

}  // namespace host

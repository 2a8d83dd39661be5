#pragma once
// The first step of every group action: the group as the host knows it (its
// cloud id, members and roles), looked up by its chat id. A failure is told
// to the user with the wording of the window that asked.

#include "host/host_records.h"
#include "host/user_prompt.h"

namespace host {

enum class GroupQueryWording {
  kCommon,      // "查询群信息失败！！！" titled "错误"
  kAddMembers,  // the add-members picker: "查询群信息失败!" titled "查询群信息"
};

enum class GroupLookup {
  kUnavailable,  // no service or signed out: traced only
  kFailed,       // GetGroupMembers failed: the user was told
  kFound,
};

// Traces and shows the failure of GetGroupMembers.
void ShowGroupQueryFailure(GroupQueryWording wording, UserPrompt& prompt);

// Services checked, the signed-in gate, then GetGroupMembers into `detail`.
GroupLookup LookUpGroup(const WString& imGroupId, const char* tag, GroupQueryWording wording,
                        UserPrompt& prompt, GroupDetail& detail);

}  // namespace host

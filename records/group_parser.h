#pragma once
// Group members and the group-tip event.

#include <json/json.h>

#include <string_view>
#include <vector>

#include "records/group_records.h"

namespace records {

// Each parser traces a fault with its record's name and keeps what it read.
bool ParseGroupMemberCustomString(const Json::Value& json, GroupMemberInfoCustemString_Stru& out);
bool ParseGroupMember(const Json::Value& json, GroupMemberInfo_Stru& out);
bool ParseGroupTipsEvent(const Json::Value& json, GroupTipsEvent& out);

// A JSON array of group members; false when not JSON or not an array.
bool ParseGroupMemberArray(std::string_view text, std::vector<GroupMemberInfo_Stru>& out);

}  // namespace records

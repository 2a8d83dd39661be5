#pragma once
// Group members and the group-tip event of the SDK's group-tips callback.

#include <cstdint>
#include <vector>

#include "platform/strings.h"
#include "records/elem_records.h"

struct GroupMemberInfoCustemString_Stru {
  WString key;
  WString value;
  bool operator==(const GroupMemberInfoCustemString_Stru&) const = default;
};

struct GroupMemberInfo_Stru {
  WString identifier;
  uint32_t join_time = 0;
  uint32_t member_role = 0;
  uint32_t msg_flag = 0;
  uint32_t msg_seq = 0;
  uint32_t shutup_time = 0;
  WString name_card;
  std::vector<GroupMemberInfoCustemString_Stru> custom_info;
  bool operator==(const GroupMemberInfo_Stru&) const = default;
};

struct GroupTipsEvent {
  uint32_t tip_type = 0;
  WString op_user;
  WString group_name;
  WString group_id;
  uint32_t time = 0;
  std::vector<WString> users;
  std::vector<GroupTipGroupChangeInfoStru> group_changes;
  std::vector<GroupTipMemberChangeInfo> member_changes;
  UserProfileBrief op_user_info;
  std::vector<UserProfileBrief> changed_users;
  GroupMemberInfo_Stru op_member;
  std::vector<GroupMemberInfo_Stru> changed_members;
  uint32_t member_num = 0;
  WString platform;
  bool operator==(const GroupTipsEvent&) const = default;
};

#pragma once
// Who each group window offers, and the name of a group created without
// one: toolkit-free rules of the member pickers.

#include <vector>

#include "service/panes/group_source.h"

namespace service {

// Friends who are not members yet (the add-members picker), in the friends' order.
std::vector<GroupPerson> FriendsNotInGroup(const std::vector<GroupPerson>& friends,
                                           const std::vector<GroupPerson>& members);
// The members except the user (the delete-members and transfer pickers).
std::vector<GroupPerson> MembersBesidesUser(const std::vector<GroupPerson>& members,
                                            const WString& userId);
// A group the user did not name is named after its first members: the
// user's name and up to the first kNamedMembers chosen, joined by "、"; at
// most kMaxGroupNameLength characters.
inline constexpr size_t kNamedMembers = 3;
inline constexpr size_t kMaxGroupNameLength = 30;
WString DefaultGroupName(const WString& userName, const std::vector<GroupPerson>& chosen);
// The name typed, trimmed of blanks at both ends and cut to the limit.
WString CleanGroupName(const WString& typed);

}  // namespace service

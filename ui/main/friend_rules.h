#pragma once
// The friends page's rules that need no toolkit: which friends the list
// shows, the looks of a request's button, the remark edit's outcome and the
// delete confirmation's text.

#include <optional>
#include <vector>

#include "platform/strings.h"
#include "records/profile_records.h"
#include "service/panes/friend_list_source.h"

namespace ui::main {

// The pseudo-friends of the two fixed entries on top of the friend list.
inline constexpr char16_t kNewFriendsId[] = u"-1";
inline constexpr char16_t kGroupsId[] = u"-2";

// The friend list's rows as user data, in order: the two fixed entries while
// the search text is empty, then the friends whose display name contains the
// search text (both upper-cased).
std::vector<WString> FriendListRows(const std::vector<service::FriendListEntry>& friends,
                                    const WString& search);

enum class RequestState { kAccepted, kPending, kJustAccepted };

struct ButtonLook {
  const char16_t* text;  // null: the text stays as it is
  const char16_t* textColor;
  const char16_t* backColor;
  bool enabled;
};
ButtonLook RequestButtonLook(RequestState state);

// The remark to send when the edit is committed, or none when the trimmed
// text is the remark already.
std::optional<WString> RemarkToCommit(const WString& current, const WString& edited);

// The delete confirmation's text for the friend's display name.
WString DeleteFriendQuestion(const WString& displayName);

}  // namespace ui::main

#pragma once
// The unread dot on a control and the page buttons' pictures. A dot is the
// control's normal, hot and pushed images set to the dot (in that order);
// no dot is all three empty.

#include <string_view>

#include "ui/kit/control.h"
#include "ui/kit/row_list.h"

namespace ui::main {

// Where the 8 x 8 dot sits on each kind of control.
inline constexpr std::string_view kConversationDot =
    "file='..\\img\\UnReadDot.png' source='0,0,0,0' dest='36,0,44,8'";
inline constexpr std::string_view kNewFriendDot =
    "file='..\\img\\UnReadDot.png' source='0,0,0,0' dest='22,0,30,8'";
inline constexpr std::string_view kPageButtonDot =
    "file='..\\img\\UnReadDot.png' source='0,0,0,0' dest='14,0,22,8'";

void SetDot(const Control& control, std::string_view dot, bool shown);
bool HasDot(const Control& control);
// The same on a control of one row of a row list.
void SetRowDot(RowList& list, int row, std::string_view control, std::string_view dot, bool shown);

// The page buttons' pictures with the conversations page (true) or the
// friends page (false) shown.
void SetPageButtonImages(const Control& recentConverBtn, const Control& friendsListBtn,
                         bool conversationsPage);

}  // namespace ui::main

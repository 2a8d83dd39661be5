#pragma once
// The friend list (FriendsList, rows from "friend_list_item.xml"): the two
// fixed entries "新的朋友" and "群聊" while no search text is typed, then the
// friends by display name, filtered by the search text; the unread dot of
// "新的朋友". The fixed entries are rows of the same template under their own
// item and control names, so a click on them reaches the window as theirs.

#include "platform/strings.h"
#include "service/panes/friend_list_source.h"
#include "ui/kit/row_list.h"
#include "ui/main/main_controls.h"

namespace ui::main {

class FriendListPane {
 public:
  static constexpr int kRowHeight = 60;

  FriendListPane(MainControls& controls, service::FriendListSource& source);

  // After the skin is built: the list's row template.
  void SetUp();
  // 3183, after the left page was chosen. The row of `selectedId` stays
  // selected.
  void UpdateFriendList(const WString& selectedId);
  // The dot of "新的朋友": none while the requests page is shown (the
  // requests are then read), else while requests are unread.
  void RefreshNewFriendEntry();
  // One row's picture or name, by user id.
  void UpdatePicture(const WString& id);
  void UpdateName(const WString& id, const WString& name);

  // The user data of the row `control` belongs to; empty for other controls.
  WString IdOf(const Control& control) const;

  RowList& rows() { return rows_; }

 private:
  // The row's values, made when the row is first drawn or read.
  void FillRow(int row);
  void FillFixed(int row, const WString& id);
  void FillFriend(int row, const FriendsList_Stru& friendRecord);
  void SetNames(int row, const char16_t* item, const char16_t* image, const char16_t* name);

  MainControls& controls_;
  service::FriendListSource& source_;
  RowList rows_;
};

}  // namespace ui::main

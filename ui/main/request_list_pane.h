#pragma once
// The friend request list (Friend_Request_List, rows from
// "Friend_Request_Item.xml"): every pending or accepted request with its
// button's look, and accepting one with that button.

#include "platform/strings.h"
#include "service/panes/request_list_source.h"
#include "ui/kit/row_list.h"
#include "ui/main/main_controls.h"

namespace ui::main {

class RequestListPane {
 public:
  static constexpr int kRowHeight = 80;

  RequestListPane(MainControls& controls, service::RequestListSource& source);

  // After the skin is built: the list's row template.
  void SetUp();
  // 3186.
  void DisplayFriendRequireList();
  // Any request still waits for the user.
  bool HasPending() const;
  // FriendRequire_ConfirmBtn: a pending request is accepted and its button
  // turns dark and disabled; an added one's button does nothing.
  void Accept(const Control& button);
  void UpdatePicture(const WString& id);

  RowList& rows() { return rows_; }

 private:
  MainControls& controls_;
  service::RequestListSource& source_;
  RowList rows_;
};

}  // namespace ui::main

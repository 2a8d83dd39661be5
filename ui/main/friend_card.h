#pragma once
// The friend card on the empty right-hand page (IMWnd_FriendCard): the
// friend's picture, name and remark, editing the remark, and deleting the
// friend after a confirmation. The card shows the last friend chosen until
// another is chosen or the friend is deleted.

#include <functional>

#include "platform/strings.h"
#include "service/panes/friend_list_source.h"
#include "ui/kit/window_impl_base.h"

namespace ui::main {

class FriendCard {
 public:
  // Asks the user (title, text); true for OK.
  using Confirm = std::function<bool(const WString& title, const WString& text)>;

  FriendCard(WindowImplBase& window, service::FriendListSource& source, Confirm confirm);

  // After the skin is built.
  void SetUp();

  // Fills the card with the friend and shows it in place of the empty page's
  // picture and text.
  void FillPersonalInformation(const FriendsList_Stru& friendRecord);
  void Hide();
  bool IsShown() const;
  // The friend on the card (empty: none).
  const WString& ShownId() const { return shownId_; }
  void UpdatePicture(const WString& id);

  // Focus left the remark editor (the window's "killfocus").
  void OnKillFocus(const Control& control);
  // 3204 (Enter in the editor, focus loss): a changed remark goes to the
  // service; when it was taken the card shows it and 3149 carries the
  // friend's new display name. The editor closes either way.
  void CommitRemarkEdit();

  // 3203 and 3171: after the user's OK the friend goes (Cancel keeps it).
  void DeleteFriend(const WString& id);

 private:
  void CloseEditor();
  void ShowRemark(const WString& remark);

  WindowImplBase& window_;
  service::FriendListSource& source_;
  Confirm confirm_;
  WString shownId_;
  Control card_;
  Control emptyImage_;
  Control emptyText_;
  Control image_;
  Control name_;
  Control remarkLabel_;
  Control remarkEdit_;
};

}  // namespace ui::main

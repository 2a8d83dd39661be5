#pragma once
// AddFriendWnd: find an account by mobile number or e-mail address, then
// send it a friend request, or invite it to register when no account exists
// for that address. Each search allows one action.

#include "host/host_records.h"
#include "service/panes/add_friend_source.h"
#include "ui/dialogs/dialog_frame.h"

class AddFriendWnd final : public ui::DialogFrame {
 public:
  explicit AddFriendWnd(service::AddFriendSource& source);

 protected:
  void InitWindow() override;
  void Notify(ui::TNotifyUI& msg) override;
  // 3192: the found account's avatar has arrived.
  ui::LRESULT HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) override;

 private:
  void Search();
  void ShowFound();
  void ShowAvatar();
  void ActOnResult();
  void ShowStatus(const WString& text, bool error);
  void SetActionEnabled(bool enabled);

  service::AddFriendSource& source_;

  // The last search.
  WString account_;
  host::AccountKind kind_ = host::AccountKind::kMobile;
  AccountInfo found_;

  ui::Control closeBtn_;
  ui::Control searchBtn_;
  ui::Control actionBtn_;
  ui::Control searchEdit_;
  ui::Control searchResult_;
  ui::Control tips_;
};

#pragma once
// The user information dialogs share one card: picture, name, id, remark
// (friends), signature, and the actions that fit the person: send a message
// (anyone but the user) and add as friend (someone who is not a friend yet).
// The three dialogs differ in their row of the dialog table (skin, focus
// loss, lifetime) and where they are opened from; their skins use the same
// "UserInfo_*" control names.

#include <functional>

#include "service/panes/group_source.h"
#include "ui/dialogs/dialog_frame.h"

namespace ui {

class UserInfoCard : public DialogFrame {
 public:
  // Opens the chat with a person in the chat window.
  using OpenChat = std::function<void(const WString& id)>;

  UserInfoCard(const DialogRow& row, service::GroupSource& source, WString userId,
               OpenChat openChat);

  const service::PersonCard& Card() const { return card_; }

 protected:
  void Notify(TNotifyUI& msg) override;

 private:
  void Fill();
  void SendMessage();
  void AddFriend();

  service::GroupSource& source_;
  WString userId_;
  OpenChat openChat_;
  service::PersonCard card_;
};

}  // namespace ui

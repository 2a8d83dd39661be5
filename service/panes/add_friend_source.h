#pragma once
// What the add-friend dialog and the main window's add-friend button need of
// the service and the host: find an account, tell the user's own account
// apart, fetch its avatar, act on what was found, and send the chat's friend
// request. Tests drive the windows with a fake.

#include "host/account_search.h"
#include "host/host_records.h"
#include "platform/strings.h"
#include "platform/window_messages.h"

class CChatTools;

namespace service {

class AddFriendSource {
 public:
  virtual ~AddFriendSource() = default;

  virtual host::AccountSearchResult SearchAccount(const WString& account, host::AccountKind kind,
                                                  AccountInfo& info) = 0;
  virtual bool IsOwnAccount(const AccountInfo& info) const = 0;
  // A local picture of the account's avatar when the face cache has it, else
  // the default person picture now; the avatar is then fetched in the
  // background and 3192 with the account's chat id reaches `notify` when it
  // has arrived (asking again then gives the picture).
  virtual WString AvatarPicture(const AccountInfo& info, platform::WindowHandle notify) = 0;
  // Relation 1: the friend request (source "账户查找", wording "加好友");
  // relation 2: the invitation to register.
  virtual host::AccountActionResult ActOnAccount(const WString& account, host::AccountKind kind,
                                                 const AccountInfo& info) = 0;
  // The chat's friend request to `id`; the SDK call's result (0: accepted).
  virtual int RequestFriend(const WString& id, const WString& source, const WString& wording) = 0;
};

class ChatToolsAddFriendSource final : public AddFriendSource {
 public:
  explicit ChatToolsAddFriendSource(CChatTools& tools) : tools_(tools) {}

  host::AccountSearchResult SearchAccount(const WString& account, host::AccountKind kind,
                                          AccountInfo& info) override;
  bool IsOwnAccount(const AccountInfo& info) const override;
  WString AvatarPicture(const AccountInfo& info, platform::WindowHandle notify) override;
  host::AccountActionResult ActOnAccount(const WString& account, host::AccountKind kind,
                                         const AccountInfo& info) override;
  int RequestFriend(const WString& id, const WString& source, const WString& wording) override;

 private:
  CChatTools& tools_;
};

}  // namespace service

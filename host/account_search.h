#pragma once
// Finding an account for the add-friend dialog and acting on what was found.
// The dialog shows the texts (host/host_texts.h) in its own status line.

#include <functional>

#include "host/host_records.h"

namespace host {

enum class AccountKind : int32_t { kMobile = 1, kEmail = 2 };

enum class AccountSearchResult {
  kUnavailable,  // no cloud service: the search ends silently
  kNotFound,     // "查找失败，无此账号的用户！"
  kFound,        // `info` holds relation, flag, id and texts
};

AccountSearchResult SearchAccountByText(const WString& account, AccountKind kind, AccountInfo& info,
                                        const char* tag);

enum class AccountActionResult {
  kUnavailable,        // the host was needed and is not there: nothing done
  kFriendRequestSent,  // relation 1
  kInvited,            // relation 2: "已经发送邀请！"
  kAlreadyFriend,      // relation 3
  kNone,               // any other relation
};

// The chat-side friend request, given the account id as text.
using FriendRequestSender = std::function<void(const WString& accountIdText)>;

// Relation 1 prepares an account without chat identity (flag 0) and then
// sends the friend request; relation 2 invites `account`.
AccountActionResult ActOnFoundAccount(const WString& account, AccountKind kind,
                                      const AccountInfo& info, const char* tag,
                                      const FriendRequestSender& sendFriendRequest);

}  // namespace host

#include "host/account_search.h"

#include <string>

#include "host/host_access.h"

namespace host {

AccountSearchResult SearchAccountByText(const WString& account, AccountKind kind, AccountInfo& info,
                                        const char* tag) {
  HostCloudService* cloud = AcquireCloudService(tag);
  if (cloud == nullptr) return AccountSearchResult::kUnavailable;
  info = AccountInfo{};
  return cloud->SearchAccount(account.c_str(), static_cast<int32_t>(kind), info)
             ? AccountSearchResult::kFound
             : AccountSearchResult::kNotFound;
}

AccountActionResult ActOnFoundAccount(const WString& account, AccountKind kind,
                                      const AccountInfo& info, const char* tag,
                                      const FriendRequestSender& sendFriendRequest) {
  switch (info.relation) {
    case 1: {
      if (info.flag == 0) {
        HostCloudService* cloud = AcquireCloudService(tag);
        if (cloud == nullptr) return AccountActionResult::kUnavailable;
        cloud->PrepareAccountForChat(info.accountId);
      }
      const std::string id = std::to_string(info.accountId);
      if (sendFriendRequest) sendFriendRequest(WString(id.begin(), id.end()));
      return AccountActionResult::kFriendRequestSent;
    }
    case 2: {
      HostCloudService* cloud = AcquireCloudService(tag);
      if (cloud == nullptr) return AccountActionResult::kUnavailable;
      // The status values are the host's own; the invitation counts as sent.
      cloud->InviteFriend(account.c_str(), static_cast<int32_t>(kind));
      return AccountActionResult::kInvited;
    }
    case 3:
      return AccountActionResult::kAlreadyFriend;
    default:
      return AccountActionResult::kNone;
  }
}

}  // namespace host

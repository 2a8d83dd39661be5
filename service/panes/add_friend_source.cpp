#include "service/panes/add_friend_source.h"

#include "host/account_id.h"
#include "service/chat_tools.h"

namespace service {
namespace {

constexpr const char* kTag = "AddFriendWnd::Search  error ";
const WString kPersonDefaultPicture = u"..\\img\\PersonDefaultImg.png";

}  // namespace

host::AccountSearchResult ChatToolsAddFriendSource::SearchAccount(const WString& account,
                                                                  host::AccountKind kind,
                                                                  AccountInfo& info) {
  return host::SearchAccountByText(account, kind, info, kTag);
}

bool ChatToolsAddFriendSource::IsOwnAccount(const AccountInfo& info) const {
  std::optional<int32_t> self = host::AccountIdOfImUser(tools_.UserId());
  return self && *self == info.accountId;
}

WString ChatToolsAddFriendSource::AvatarPicture(const AccountInfo& info,
                                                platform::WindowHandle notify) {
  return tools_.FacePathFor(info.avatarUrl, kPersonDefaultPicture, info.imUserId, notify);
}

host::AccountActionResult ChatToolsAddFriendSource::ActOnAccount(const WString& account,
                                                                 host::AccountKind kind,
                                                                 const AccountInfo& info) {
  return host::ActOnFoundAccount(account, kind, info, kTag, [this](const WString& id) {
    tools_.AddFriend(id, u"账户查找", u"加好友");
  });
}

int ChatToolsAddFriendSource::RequestFriend(const WString& id, const WString& source,
                                            const WString& wording) {
  return tools_.AddFriend(id, source, wording);
}

}  // namespace service

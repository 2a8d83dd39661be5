#include "host/account_search.h"

#include "host_test_support.h"

namespace host::testing {
namespace {

class AccountSearch : public LocalHostTest {
 protected:
  AccountInfo Search(const WString& text, AccountKind kind,
                     AccountSearchResult expected = AccountSearchResult::kFound) {
    AccountInfo info;
    EXPECT_EQ(SearchAccountByText(text, kind, info, "AddFriendWnd  error "), expected);
    return info;
  }
  std::vector<WString> requests_;
  FriendRequestSender sender_ = [this](const WString& id) { requests_.push_back(id); };
};

TEST_F(AccountSearch, RelationsFollowTheDirectory) {
  struct Row {
    WString text;
    AccountKind kind;
    int32_t relation;
    int32_t accountId;
  };
  const Row rows[] = {
      {u"bob@example.com", AccountKind::kEmail, 3, 2},
      {u"13800000003", AccountKind::kMobile, 1, 3},
      {u"nobody@example.com", AccountKind::kEmail, 2, -1},
      {u"cai@example.com", AccountKind::kMobile, 2, -1},  // an address is no mobile number
  };
  for (const Row& row : rows) {
    const AccountInfo info = Search(row.text, row.kind);
    EXPECT_EQ(info.relation, row.relation) << platform::Utf16ToUtf8(row.text);
    EXPECT_EQ(info.accountId, row.accountId) << platform::Utf16ToUtf8(row.text);
    EXPECT_EQ(info.contact, row.text);
  }
}

TEST_F(AccountSearch, FailedSearchIsNotFound) {
  host_.FailOperation("SearchAccount");
  Search(u"bob@example.com", AccountKind::kEmail, AccountSearchResult::kNotFound);
}

TEST_F(AccountSearch, AccountWithoutChatIdentityIsPreparedBeforeTheRequest) {
  const AccountInfo dee = Search(u"dee@example.com", AccountKind::kEmail);
  ASSERT_EQ(dee.flag, 0);
  host_.ClearCalls();
  EXPECT_EQ(ActOnFoundAccount(u"dee@example.com", AccountKind::kEmail, dee, "t ", sender_),
            AccountActionResult::kFriendRequestSent);
  EXPECT_EQ(host_.CallNames(), std::vector<std::string>{"PrepareAccountForChat"});
  EXPECT_EQ(host_.Calls()[0].args, "4");
  EXPECT_EQ(requests_, std::vector<WString>{u"4"});
  EXPECT_EQ(host_.FindAccount(4)->flag, 1);
}

TEST_F(AccountSearch, ReadyAccountGetsTheRequestWithoutHostCall) {
  const AccountInfo cai = Search(u"cai@example.com", AccountKind::kEmail);
  host_.ClearCalls();
  EXPECT_EQ(ActOnFoundAccount(u"cai@example.com", AccountKind::kEmail, cai, "t ", sender_),
            AccountActionResult::kFriendRequestSent);
  EXPECT_TRUE(host_.CallNames().empty());
  EXPECT_EQ(requests_, std::vector<WString>{u"3"});
}

TEST_F(AccountSearch, UnregisteredAddressIsInvitedAndFriendsAreLeftAlone) {
  const AccountInfo nobody = Search(u"13900000000", AccountKind::kMobile);
  EXPECT_EQ(ActOnFoundAccount(u"13900000000", AccountKind::kMobile, nobody, "t ", sender_),
            AccountActionResult::kInvited);
  EXPECT_EQ(host_.Invitations(), (std::vector<std::pair<WString, int32_t>>{{u"13900000000", 1}}));
  const AccountInfo bob = Search(u"bob@example.com", AccountKind::kEmail);
  EXPECT_EQ(ActOnFoundAccount(u"bob@example.com", AccountKind::kEmail, bob, "t ", sender_),
            AccountActionResult::kAlreadyFriend);
  EXPECT_TRUE(requests_.empty());
}

}  // namespace
}  // namespace host::testing

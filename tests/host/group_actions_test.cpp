// Group actions, owner transfer and the friend search with their texts.
#include "host/group_actions.h"
#include "host/account_search.h"
#include "host/owner_transfer.h"
#include "host_test_support.h"

namespace host::testing {
namespace {

struct ActionCase {
  const char* name;
  GroupAction action;
  const char* hostOperation;
  const char* failureText;
  bool checksRole;
};

void PrintTo(const ActionCase& c, std::ostream* os) {
  *os << c.name;
}

class GroupActions : public LocalHostTest, public ::testing::WithParamInterface<ActionCase> {
 protected:
  GroupActionResult Run(GroupAction action, int32_t member = 3, WString group = u"group_1001") {
    GroupActionRequest request{action, std::move(group), {{member, {}, {}, {}, 0}}, u"Renamed"};
    return RunGroupAction(request, "GroupTest  error ", prompt_,
                          [this](const GroupDetail& group) { followedUp_.push_back(group); });
  }
  GroupActionResult RunCase() {
    const GroupAction action = GetParam().action;
    if (action == GroupAction::kLeave) host_.SignIn(3);  // the owner may not leave
    return Run(action, action == GroupAction::kAddMembers ? 4 : 3);
  }
  std::vector<GroupDetail> followedUp_;
};

TEST_P(GroupActions, CallsTheHostInOrderThenTheChatSide) {
  host_.ClearCalls();
  EXPECT_EQ(RunCase(), GroupActionResult::kDone);
  Strings expected = {"IsHostLoggedIn", "GetGroupMembers"};
  if (GetParam().checksRole) expected.push_back("GetGroupRole");
  expected.push_back(GetParam().hostOperation);
  EXPECT_EQ(host_.CallNames(), expected);
  ASSERT_EQ(followedUp_.size(), 1u);
  EXPECT_EQ(followedUp_[0].cloudGroupId, 1001);
  EXPECT_TRUE(prompt_.shown.empty());
}

TEST_P(GroupActions, HostFailureShowsTheActionsTextAndSkipsTheChatSide) {
  host_.FailOperation(GetParam().hostOperation);
  EXPECT_EQ(RunCase(), GroupActionResult::kHostFailed);
  EXPECT_EQ(prompt_.shown, Strings{std::string("错误: ") + GetParam().failureText});
  EXPECT_TRUE(followedUp_.empty());
}

TEST_P(GroupActions, GroupQueryFailureStopsBeforeAnythingElse) {
  host_.FailOperation("GetGroupMembers");
  host_.ClearCalls();
  EXPECT_EQ(RunCase(), GroupActionResult::kGroupQueryFailed);
  EXPECT_EQ(host_.CallNames(), (Strings{"IsHostLoggedIn", "GetGroupMembers"}));
  EXPECT_EQ(trace_.Count("查询群信息失败!!!"), 1u);
  EXPECT_EQ(prompt_.shown,
            Strings{GetParam().action == GroupAction::kAddMembers ? "查询群信息: 查询群信息失败!"
                                                                  : "错误: 查询群信息失败！！！"});
  EXPECT_TRUE(followedUp_.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Actions, GroupActions,
    ::testing::Values(
        ActionCase{"RemoveMembers", GroupAction::kRemoveMembers, "RemoveGroupMembers",
                   "删除群成员失败！！！", true},
        ActionCase{"Leave", GroupAction::kLeave, "RemoveGroupMembers", "退群失败！！！", false},
        ActionCase{"Disband", GroupAction::kDisband, "DisbandCloudGroup", "解散群组失败！！！",
                   true},
        ActionCase{"AddMembers", GroupAction::kAddMembers, "AddGroupMembers", "添加群成员失败!",
                   false},
        ActionCase{"Rename", GroupAction::kRename, "RenameGroup", "设置群名称失败！！！", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(GroupActions, RemovingAndDisbandingNeedTheOwner) {
  host_.SignIn(2);  // an ordinary member
  for (GroupAction action : {GroupAction::kRemoveMembers, GroupAction::kDisband}) {
    prompt_.shown.clear();
    EXPECT_EQ(Run(action), GroupActionResult::kNotOwner);
    EXPECT_EQ(prompt_.shown, Strings{"提示: 非管理员不能删除群成员！！！"});
    EXPECT_EQ(host_.CallNames().back(), "GetGroupRole");
  }
  EXPECT_EQ(host_.FindGroup(u"group_1001")->memberCount, 3);
  host_.SignIn(1);
  host_.FailOperation("GetGroupRole");
  prompt_.shown.clear();
  EXPECT_EQ(Run(GroupAction::kDisband), GroupActionResult::kRoleQueryFailed);
  EXPECT_EQ(prompt_.shown, Strings{"错误: 查询群角色失败！！！"});
  EXPECT_TRUE(host_.FindGroup(u"group_1001").has_value());
  EXPECT_TRUE(followedUp_.empty());
}

TEST_F(GroupActions, ModesAndIdsReachTheHostAndAnUnknownGroupIsAQueryFailure) {
  EXPECT_EQ(Run(GroupAction::kRemoveMembers), GroupActionResult::kDone);
  EXPECT_EQ(host_.Calls().back().args, "1001,1,1");
  host_.SignIn(2);
  EXPECT_EQ(Run(GroupAction::kLeave, 2), GroupActionResult::kDone);
  EXPECT_EQ(host_.Calls().back().args, "1001,1,2");
  const GroupDetail group = *host_.FindGroup(u"group_1001");
  ASSERT_EQ(group.members.size(), 1u);
  EXPECT_EQ(group.members[0].accountId, 1);
  EXPECT_EQ(Run(GroupAction::kRename, 1, u"group_9999"), GroupActionResult::kGroupQueryFailed);
}

class OwnerTransfer : public LocalHostTest {
 protected:
  OwnerTransferResult Transfer(int32_t newOwner, const WString& name) {
    return TransferGroupOwnership({1001, newOwner, name}, "t ", prompt_, [this] { ++followUps_; });
  }
  int32_t RoleOf(int32_t accountId) {
    const GroupDetail group = *host_.FindGroup(u"group_1001");
    for (const auto& member : group.members) {
      if (member.accountId == accountId) return member.role;
    }
    return -1;
  }
  int followUps_ = 0;
};

TEST_F(OwnerTransfer, ConfirmedTransferMovesTheOwnerAndSaysSo) {
  EXPECT_EQ(Transfer(2, u"Bob"), OwnerTransferResult::kDone);
  EXPECT_EQ(prompt_.shown, (Strings{"? 提示: 确定选择Bob为新群主,你将放弃群主身份。",
                                    "提示: 转移群组权限成功! \"Bob\" 已成为新群主"}));
  EXPECT_EQ(host_.CallNames(),
            (Strings{"IsHostLoggedIn", "CheckGroupOwnerTransfer", "TransferGroupOwner"}));
  EXPECT_EQ(host_.Calls().back().args, "1001,2");
  EXPECT_EQ(RoleOf(2), 1);
  EXPECT_EQ(RoleOf(1), 0);
  EXPECT_EQ(followUps_, 1);
}

TEST_F(OwnerTransfer, CancelledUnsetRefusedOrFailedGoNoFurther) {
  prompt_.answer = false;
  EXPECT_EQ(Transfer(2, u"Bob"), OwnerTransferResult::kCancelled);
  EXPECT_EQ(host_.CallNames().back(), "CheckGroupOwnerTransfer");
  EXPECT_EQ(prompt_.shown.size(), 1u);
  EXPECT_EQ(RoleOf(1), 1);
  prompt_.shown.clear();
  host_.ClearCalls();
  EXPECT_EQ(Transfer(-1, u""), OwnerTransferResult::kNoNewOwner);
  EXPECT_TRUE(host_.CallNames().empty());
  EXPECT_EQ(Transfer(4, u"Dee"), OwnerTransferResult::kRefused);  // not a member
  EXPECT_TRUE(trace_.Contains("not another member"));
  EXPECT_EQ(host_.CallNames().back(), "CheckGroupOwnerTransfer");
  EXPECT_TRUE(prompt_.shown.empty());
  prompt_.answer = true;
  host_.FailOperation("TransferGroupOwner");
  EXPECT_EQ(Transfer(3, u"Cai"), OwnerTransferResult::kHostFailed);
  EXPECT_EQ(prompt_.shown.back(), "错误: 转移群组权限失败!");
  EXPECT_EQ(followUps_, 0);
}

class AccountSearch : public LocalHostTest {
 protected:
  AccountInfo Search(const WString& text, AccountKind kind) {
    AccountInfo info;
    EXPECT_EQ(SearchAccountByText(text, kind, info, "t "), AccountSearchResult::kFound);
    return info;
  }
  AccountActionResult Act(const WString& text, AccountKind kind) {
    return ActOnFoundAccount(text, kind, Search(text, kind), "t ",
                             [this](const WString& id) { requests_.push_back(id); });
  }
  std::vector<WString> requests_;
};

TEST_F(AccountSearch, RelationsFollowTheDirectory) {
  struct Row {
    WString text;
    AccountKind kind;
    int32_t relation;
    int32_t accountId;
  };
  for (const Row& row : {Row{u"bob@example.com", AccountKind::kEmail, 3, 2},
                         {u"13800000003", AccountKind::kMobile, 1, 3},
                         {u"nobody@example.com", AccountKind::kEmail, 2, -1},
                         {u"cai@example.com", AccountKind::kMobile, 2, -1}}) {  // not a number
    const AccountInfo info = Search(row.text, row.kind);
    EXPECT_EQ(info.relation, row.relation) << platform::Utf16ToUtf8(row.text);
    EXPECT_EQ(info.accountId, row.accountId) << platform::Utf16ToUtf8(row.text);
    EXPECT_EQ(info.contact, row.text);
  }
  host_.FailOperation("SearchAccount");
  AccountInfo info;
  EXPECT_EQ(SearchAccountByText(u"bob@example.com", AccountKind::kEmail, info, "t "),
            AccountSearchResult::kNotFound);
}

TEST_F(AccountSearch, RequestInvitationOrNothingByRelation) {
  EXPECT_EQ(Act(u"dee@example.com", AccountKind::kEmail), AccountActionResult::kFriendRequestSent);
  EXPECT_EQ(host_.Calls().back().name, "PrepareAccountForChat");  // no chat identity yet
  EXPECT_EQ(host_.Calls().back().args, "4");
  EXPECT_EQ(host_.FindAccount(4)->flag, 1);
  host_.ClearCalls();
  EXPECT_EQ(Act(u"cai@example.com", AccountKind::kEmail), AccountActionResult::kFriendRequestSent);
  EXPECT_EQ(host_.CallNames(), Strings{"SearchAccount"});
  EXPECT_EQ(requests_, (std::vector<WString>{u"4", u"3"}));
  EXPECT_EQ(Act(u"13900000000", AccountKind::kMobile), AccountActionResult::kInvited);
  EXPECT_EQ(host_.Invitations(), (std::vector<std::pair<WString, int32_t>>{{u"13900000000", 1}}));
  EXPECT_EQ(Act(u"bob@example.com", AccountKind::kEmail), AccountActionResult::kAlreadyFriend);
  EXPECT_EQ(requests_.size(), 2u);
}

}  // namespace
}  // namespace host::testing

#include "host/group_actions.h"

#include "host_test_support.h"

namespace host::testing {
namespace {

class GroupActions : public LocalHostTest {
 protected:
  GroupActionResult Run(GroupAction action, CloudMemberList members = {}) {
    GroupActionRequest request;
    request.action = action;
    request.imGroupId = u"group_1001";
    request.members = std::move(members);
    request.newName = u"Renamed";
    return RunGroupAction(request, "GroupTest  error ", prompt_,
                          [this](const GroupDetail& group) { followedUp_.push_back(group); });
  }
  static CloudGroupMember Member(int32_t id) { return {id, {}, {}, {}, 0}; }

  std::vector<GroupDetail> followedUp_;
};

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

class GroupActionTable : public GroupActions, public ::testing::WithParamInterface<ActionCase> {
 protected:
  GroupActionResult RunCase() {
    const GroupAction action = GetParam().action;
    if (action == GroupAction::kLeave) return Run(action, {Member(3)});
    return Run(action, {Member(action == GroupAction::kAddMembers ? 4 : 3)});
  }
};

TEST_P(GroupActionTable, CallsTheHostInOrderThenTheChatSide) {
  const ActionCase& c = GetParam();
  if (c.action == GroupAction::kLeave) host_.SignIn(3);  // the owner may not leave
  host_.ClearCalls();
  EXPECT_EQ(RunCase(), GroupActionResult::kDone);
  std::vector<std::string> expected = {"IsHostLoggedIn", "GetGroupMembers"};
  if (c.checksRole) expected.push_back("GetGroupRole");
  expected.push_back(c.hostOperation);
  EXPECT_EQ(host_.CallNames(), expected);
  ASSERT_EQ(followedUp_.size(), 1u);
  EXPECT_EQ(followedUp_[0].cloudGroupId, 1001);
  EXPECT_TRUE(prompt_.shown.empty());
}

TEST_P(GroupActionTable, HostFailureShowsTheActionsTextAndSkipsTheChatSide) {
  const ActionCase& c = GetParam();
  if (c.action == GroupAction::kLeave) host_.SignIn(3);
  host_.FailOperation(c.hostOperation);
  EXPECT_EQ(RunCase(), GroupActionResult::kHostFailed);
  ASSERT_EQ(prompt_.shown.size(), 1u);
  EXPECT_EQ(prompt_.shown[0].title, "错误");
  EXPECT_EQ(prompt_.shown[0].text, c.failureText);
  EXPECT_TRUE(followedUp_.empty());
}

TEST_P(GroupActionTable, GroupQueryFailureStopsBeforeAnythingElse) {
  const ActionCase& c = GetParam();
  host_.FailOperation("GetGroupMembers");
  host_.ClearCalls();
  EXPECT_EQ(RunCase(), GroupActionResult::kGroupQueryFailed);
  EXPECT_EQ(host_.CallNames(), (std::vector<std::string>{"IsHostLoggedIn", "GetGroupMembers"}));
  EXPECT_EQ(trace_.Count("查询群信息失败!!!"), 1u);
  ASSERT_EQ(prompt_.shown.size(), 1u);
  if (c.action == GroupAction::kAddMembers) {
    EXPECT_EQ(prompt_.shown[0].title, "查询群信息");
    EXPECT_EQ(prompt_.shown[0].text, "查询群信息失败!");
  } else {
    EXPECT_EQ(prompt_.shown[0].title, "错误");
    EXPECT_EQ(prompt_.shown[0].text, "查询群信息失败！！！");
  }
  EXPECT_TRUE(followedUp_.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Actions, GroupActionTable,
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
    host_.ClearCalls();
    EXPECT_EQ(Run(action, {Member(3)}), GroupActionResult::kNotOwner);
    ASSERT_EQ(prompt_.shown.size(), 1u);
    EXPECT_EQ(prompt_.shown[0].text, "非管理员不能删除群成员！！！");
    EXPECT_EQ(host_.CallNames().back(), "GetGroupRole");
  }
  EXPECT_TRUE(followedUp_.empty());
  EXPECT_EQ(host_.FindGroup(u"group_1001")->memberCount, 3);
}

TEST_F(GroupActions, RoleQueryFailureIsShown) {
  host_.FailOperation("GetGroupRole");
  EXPECT_EQ(Run(GroupAction::kDisband), GroupActionResult::kRoleQueryFailed);
  ASSERT_EQ(prompt_.shown.size(), 1u);
  EXPECT_EQ(prompt_.shown[0].text, "查询群角色失败！！！");
  EXPECT_TRUE(host_.FindGroup(u"group_1001").has_value());
}

TEST_F(GroupActions, ModesAndIdsReachTheHost) {
  EXPECT_EQ(Run(GroupAction::kRemoveMembers, {Member(3)}), GroupActionResult::kDone);
  EXPECT_EQ(host_.Calls().back().args, "1001,1,1");
  host_.SignIn(2);
  EXPECT_EQ(Run(GroupAction::kLeave, {Member(2)}), GroupActionResult::kDone);
  EXPECT_EQ(host_.Calls().back().args, "1001,1,2");
  const GroupDetail group = *host_.FindGroup(u"group_1001");
  ASSERT_EQ(group.members.size(), 1u);
  EXPECT_EQ(group.members[0].accountId, 1);
}

TEST_F(GroupActions, UnknownGroupIsAQueryFailure) {
  GroupActionRequest request;
  request.action = GroupAction::kRename;
  request.imGroupId = u"group_9999";
  request.newName = u"x";
  EXPECT_EQ(RunGroupAction(request, "t ", prompt_, nullptr), GroupActionResult::kGroupQueryFailed);
}

}  // namespace
}  // namespace host::testing

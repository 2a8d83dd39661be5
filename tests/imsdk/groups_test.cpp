// Groups and the tips their changes leave.
#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

class GroupsTest : public SdkTest {
 protected:
  void SetUp() override {
    SdkTest::SetUp();
    for (const char* id : {"bob", "carol", "dave"}) control.CreateAccount(id);
    SignIn("alice");
  }
};

Json::Value FirstChange(const Json::Value& tip) {
  return tip["group_tips_elem_group_change_info_array"][0];
}

TEST_F(GroupsTest, CreateByTheSignedInAccountAndChangeWithTips) {
  Json::Value created = CallJson("create", TIMGroupCreate,
                                 R"({"create_group_param_group_name":"Design",
      "create_group_param_group_id":"g1",
      "create_group_param_group_member_array":[{"group_member_info_identifier":"bob"}]})");
  EXPECT_EQ(created["create_group_result_groupid"].asString(), "g1");
  Json::Value tip = Parse(rec.WaitFor("group_tips")[0].json);
  EXPECT_EQ(tip["group_tips_elem_tip_type"].asInt(), kTIMGroupTip_Invite);
  EXPECT_EQ(tip["group_tips_elem_group_id"].asString(), "g1");
  EXPECT_EQ(control.UnreadCount("bob", 2, "g1"), 1u);

  ASSERT_EQ(Call("rename", TIMGroupModifyGroupInfo,
                 R"({"group_modify_info_param_group_id":"g1",
      "group_modify_info_param_group_name":"Design 2"})")
                .code,
            0);
  Json::Value change = Parse(rec.WaitFor("group_tips", 2)[1].json);
  EXPECT_EQ(change["group_tips_elem_tip_type"].asInt(), kTIMGroupTip_InfoChange);
  EXPECT_EQ(FirstChange(change)["group_tips_group_change_info_flag"].asInt(), 1);
  EXPECT_EQ(FirstChange(change)["group_tips_group_change_info_value"].asString(), "Design 2");
  // The same tip arrived as a message in the group conversation.
  auto msgs = rec.WaitFor("new_msg", 2);
  EXPECT_EQ(Parse(msgs[1].json)[0]["message_elem_array"][0]["elem_type"].asInt(),
            kTIMElem_GroupTips);
  EXPECT_EQ(control.GroupName("g1"), "Design 2");

  Json::Value results = CallJson("invite", TIMGroupInviteMember,
                                 R"({"group_invite_member_param_group_id":"g1",
      "group_invite_member_param_identifier_array":["carol","bob","ghost"]})");
  EXPECT_EQ(results[0]["group_invite_member_result_result"].asInt(), 1);
  EXPECT_EQ(results[1]["group_invite_member_result_result"].asInt(), 2);
  EXPECT_EQ(results[2]["group_invite_member_result_result"].asInt(), 0);

  ASSERT_EQ(
      Call("owner", TIMGroupModifyGroupInfo,
           R"({"group_modify_info_param_group_id":"g1","group_modify_info_param_owner":"bob"})")
          .code,
      0);
  EXPECT_EQ(control.GroupOwner("g1"), "bob");
  // No longer the owner: removing members and disbanding are refused.
  EXPECT_EQ(Call("kick", TIMGroupDeleteMember,
                 R"({"group_delete_member_param_group_id":"g1",
      "group_delete_member_param_identifier_array":["carol"]})")
                .code,
            TIM_ERR_GROUP_PERMISSION);
  EXPECT_EQ(Call("disband", TIMGroupDelete, "g1").code, TIM_ERR_GROUP_PERMISSION);
  EXPECT_EQ(Call("quit", TIMGroupQuit, "g1").code, 0);
  EXPECT_EQ(control.GroupMembers("g1"), (std::vector<std::string>{"bob", "carol"}));
  EXPECT_EQ(CallJson("joined", TIMGroupGetJoinedGroupList).size(), 0u);
}

TEST_F(GroupsTest, ChangesByOthersReachTheSignedInMember) {
  std::string gid = control.CreateGroup("bob", "Team", {"alice", "carol"});
  ASSERT_FALSE(gid.empty());
  EXPECT_EQ(control.TransferGroupOwner("bob", gid, "alice"), 0);
  auto tips = rec.WaitFor("group_tips", 2);
  ASSERT_EQ(tips.size(), 2u);
  Json::Value owner = FirstChange(Parse(tips[1].json));
  EXPECT_EQ(owner["group_tips_group_change_info_flag"].asInt(), 5);
  EXPECT_EQ(owner["group_tips_group_change_info_value"].asString(), "alice");

  EXPECT_EQ(control.RemoveGroupMembers("alice", gid, {"carol"}), 0);
  EXPECT_EQ(Parse(rec.WaitFor("group_tips", 3)[2].json)["group_tips_elem_tip_type"].asInt(),
            kTIMGroupTip_Kick);
  ASSERT_EQ(control.SendText("bob", 2, gid, "hello group"), 0);
  EXPECT_EQ(control.SendText("carol", 2, gid, "let me in"), TIM_ERR_NOT_GROUP_MEMBER);

  Json::Value info = CallJson("info", TIMGroupGetGroupInfoList, ("[\"" + gid + "\"]").c_str());
  ASSERT_EQ(info.size(), 1u);
  EXPECT_EQ(info[0]["group_base_info_owner_identifier"].asString(), "alice");
  EXPECT_EQ(info[0]["group_base_info_member_array"].size(), 2u);

  ASSERT_EQ(Call("disband", TIMGroupDelete, gid.c_str()).code, 0);
  EXPECT_TRUE(control.GroupOwner(gid).empty());
  Json::Value report = Parse(control.LastMessageJson("bob", 2, gid))["message_elem_array"][0];
  EXPECT_EQ(report["elem_type"].asInt(), kTIMElem_GroupReport);
  EXPECT_EQ(report["group_report_elem_report_type"].asInt(), kTIMGroupReport_Disband);
}

}  // namespace
}  // namespace imsdk_test

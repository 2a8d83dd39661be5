// The group operations the group windows start: what a look-up keeps, the
// clean-up after leaving, and the pickers' rules.
#include "service/group_operations.h"

#include "service/panes/group_picks.h"
#include "tests/service/group_world.h"

namespace service_test {
namespace {

using host::GroupActionResult;
using host::GroupLookup;
using host::GroupQueryWording;

using GroupOperationsTest = GroupWorldTest;

TEST_F(GroupOperationsTest, LookUpKeepsTheMembersAsChatRecordsAndTheUsersRole) {
  ASSERT_TRUE(SignIn());
  const WString owned = MakeGroup("10001", {"10002"});
  const WString joined = MakeGroup("10002", {"10001", "10003"});
  service::GroupOperations operations(*tools);

  ASSERT_EQ(operations.LookUp(joined, "test ", GroupQueryWording::kCommon), GroupLookup::kFound);
  std::vector<GroupMemberInfo_Stru> members = tools->Roster().Members(joined);
  ASSERT_EQ(members.size(), 3u);
  for (const GroupMemberInfo_Stru& member : members) {
    EXPECT_EQ(member.member_role, member.identifier == u"10002" ? service::kMemberRoleOwner
                                                                : service::kMemberRoleOrdinary);
  }
  std::optional<service::GroupSummary> summary = tools->Roster().Summary(joined);
  ASSERT_TRUE(summary);
  EXPECT_EQ(summary->name, u"评审组");
  EXPECT_EQ(summary->memberCount, 3);
  EXPECT_EQ(summary->ownerId, u"10002");
  EXPECT_FALSE(summary->userIsOwner);
  EXPECT_EQ(summary->cloudGroupId, host_.FindGroup(joined)->cloudGroupId);

  ASSERT_EQ(operations.LookUp(owned, "test ", GroupQueryWording::kCommon), GroupLookup::kFound);
  EXPECT_TRUE(tools->Roster().Summary(owned)->userIsOwner);

  // A failed look-up is told and keeps what was known; a new session knows nothing.
  host_.FailOperation("GetGroupMembers");
  EXPECT_EQ(operations.LookUp(owned, "test ", GroupQueryWording::kAddMembers),
            GroupLookup::kFailed);
  ASSERT_FALSE(window.Boxes().empty());
  EXPECT_EQ(window.Boxes().back().title, u"查询群信息");
  EXPECT_TRUE(tools->Roster().Summary(owned));
  tools->ClearResource();
  EXPECT_FALSE(tools->Roster().Summary(owned));
}

TEST_F(GroupOperationsTest, LeavingRemovesTheConversationItsHistoryAndTheGroup) {
  ASSERT_TRUE(SignIn());
  const WString group = MakeGroup("10002", {"10001", "10003"});
  // The creation's own tip may still be on its way: wait for the text's row.
  ASSERT_EQ(engine.SendText("10002", kTIMConv_Group, Utf8(group), "开会"), 0);
  ASSERT_TRUE(PumpUntil([&] { return StoredRows(group).size() == 1u; }));
  service::GroupOperations operations(*tools);
  ASSERT_EQ(operations.LookUp(group, "test ", GroupQueryWording::kCommon), GroupLookup::kFound);

  // Refused by the host: nothing changes.
  host_.FailOperation("RemoveGroupMembers");
  EXPECT_EQ(operations.Leave(group), GroupActionResult::kHostFailed);
  host_.FailOperation("RemoveGroupMembers", false);
  EXPECT_EQ(StoredRows(group).size(), 1u);
  EXPECT_TRUE(tools->IsJoinedGroup(group));
  DrainNow();
  EXPECT_EQ(CountSeen(platform::msg::kConversationDatum), 0u);

  EXPECT_EQ(operations.Leave(group), GroupActionResult::kDone);
  EXPECT_TRUE(StoredRows(group).empty());
  EXPECT_FALSE(tools->Roster().Summary(group));
  EXPECT_EQ(engine.GroupMembers(Utf8(group)), (std::vector<std::string>{"10002", "10003"}));
  EXPECT_TRUE(PumpUntil([&] { return !tools->IsJoinedGroup(group); }));
  DrainNow();
  std::vector<Seen> gone = SeenOf(platform::msg::kConversationDatum);
  ASSERT_EQ(gone.size(), 1u);
  EXPECT_EQ(gone.front().first, group);
}

TEST(GroupPicks, OffersAndNames) {
  using service::GroupPerson;
  auto person = [](const char16_t* id, const char16_t* name) {
    GroupPerson p;
    p.id = id;
    p.name = name;
    return p;
  };
  const std::vector<GroupPerson> friends = {person(u"2", u"王工"), person(u"3", u"李工"),
                                            person(u"4", u"赵工")};
  const std::vector<GroupPerson> members = {person(u"1", u"我"), person(u"3", u"李工")};
  auto ids = [](const std::vector<GroupPerson>& people) {
    WString joined;
    for (const GroupPerson& p : people) joined += p.id;
    return joined;
  };
  EXPECT_EQ(ids(service::FriendsNotInGroup(friends, members)), u"24");
  EXPECT_EQ(ids(service::FriendsNotInGroup(friends, {})), u"234");
  EXPECT_EQ(ids(service::MembersBesidesUser(members, u"1")), u"3");
  EXPECT_EQ(ids(service::MembersBesidesUser(members, u"9")), u"13");

  const struct {
    const char16_t* user;
    std::vector<GroupPerson> chosen;
    const char16_t* name;
  } names[] = {
      {u"张明", {person(u"2", u"王工")}, u"张明、王工"},
      {u"张明", friends, u"张明、王工、李工、赵工"},
      {u"张明",
       {friends[0], friends[1], friends[2], person(u"5", u"钱工")},
       u"张明、王工、李工、赵工"},
      {u"", {person(u"2", u"")}, u"2"},
  };
  for (const auto& c : names) EXPECT_EQ(service::DefaultGroupName(c.user, c.chosen), c.name);

  const struct {
    const char16_t* typed;
    const char16_t* clean;
  } typed[] = {
      {u"  评审组\u3000", u"评审组"},
      {u" \t ", u""},
      {u"一二三四五六七八九十一二三四五六七八九十一二三四五六七八九十多余",
       u"一二三四五六七八九十一二三四五六七八九十一二三四五六七八九十"},
      // 29 characters and a character of two units: never half of it.
      {u"一二三四五六七八九十一二三四五六七八九十一二三四五六七八九\U0001F600",
       u"一二三四五六七八九十一二三四五六七八九十一二三四五六七八九"},
  };
  for (const auto& c : typed) EXPECT_EQ(service::CleanGroupName(c.typed), c.clean);
}

}  // namespace
}  // namespace service_test

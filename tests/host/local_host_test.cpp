// The local host's own decisions and its mirror of the chat engine's groups.

#include <fstream>

#include "host_test_support.h"

namespace host::testing {
namespace {

class LocalHostBehaviour : public LocalHostTest {
 protected:
  HostCloudService& cloud() { return *host_.GetCloudService(); }
  HostAppService& app() { return *host_.GetAppService(); }
  std::vector<std::pair<int32_t, int32_t>> Roles(const WString& id) {
    std::vector<std::pair<int32_t, int32_t>> roles;
    const GroupDetail group = *host_.FindGroup(id);
    for (const auto& member : group.members) roles.emplace_back(member.accountId, member.role);
    return roles;
  }
};

// The chat engine's group hook reports to the host's mirror.
TEST_F(LocalHostBehaviour, MirrorsTheEnginesGroupsIdempotently) {
  local::GroupMirror& engine = host_;
  engine.OnGroupCreated(u"g2", u"Chat", u"2", {u"2", u"3", u"not-a-number"});
  engine.OnGroupCreated(u"g2", u"Chat", u"2", {u"2", u"3"});  // reported twice
  EXPECT_EQ(Roles(u"g2"), (std::vector<std::pair<int32_t, int32_t>>{{2, 1}, {3, 0}}));
  engine.OnMembersJoined(u"g2", {u"1", u"1", u"4"});
  engine.OnMembersLeft(u"g2", {u"3"});
  engine.OnOwnerChanged(u"g2", u"1");
  engine.OnGroupRenamed(u"g2", u"Renamed");
  const GroupDetail group = *host_.FindGroup(u"g2");
  EXPECT_EQ(group.name, u"Renamed");
  EXPECT_EQ(group.ownerImUserId, u"1");
  EXPECT_EQ(Roles(u"g2"), (std::vector<std::pair<int32_t, int32_t>>{{1, 1}, {2, 0}, {4, 0}}));
  int32_t role = -1;
  EXPECT_TRUE(cloud().GetGroupRole(group.cloudGroupId, role));
  EXPECT_EQ(role, 1);
  engine.OnMembersJoined(u"unknown", {u"1"});  // changes to groups never created are dropped
  engine.OnGroupDismissed(u"g2");
  EXPECT_FALSE(host_.FindGroup(u"g2"));
  EXPECT_FALSE(host_.FindGroup(u"unknown"));
}

TEST_F(LocalHostBehaviour, CreatedGroupsAreJoinedAndASignedOutHostAnswersFailure) {
  CloudGroupInfo created;
  EXPECT_FALSE(cloud().CreateCloudGroup(u"Private", u"X", {}, created));
  ASSERT_TRUE(cloud().CreateCloudGroup(u"Public", u"New", {{2, u"2", u"Bob", u"", 0}}, created));
  EXPECT_EQ(created.imGroupId, u"group_" + local::ImUserIdOf(created.cloudGroupId));
  CloudGroupList joined;
  ASSERT_TRUE(cloud().GetJoinedGroups(joined));
  EXPECT_EQ(joined.size(), 2u);
  host_.SignIn(4);
  ASSERT_TRUE(cloud().GetJoinedGroups(joined));
  EXPECT_TRUE(joined.empty());
  host_.SignOut();
  AccountInfo info;
  GroupDetail detail;
  EXPECT_FALSE(cloud().IsHostLoggedIn());
  EXPECT_FALSE(cloud().SearchAccount(u"bob@example.com", 2, info));
  EXPECT_FALSE(cloud().GetGroupMembers(u"group_1001", detail));
  EXPECT_FALSE(cloud().GetJoinedGroups(joined));
  EXPECT_EQ(info.accountId, -1);
  EXPECT_EQ(detail.cloudGroupId, -1);
}

TEST_F(LocalHostBehaviour, DrawingSpaceStoresQueriesAndOpens) {
  const auto source = space_ / "plan.dwg";
  std::ofstream(source) << "drawing";
  SpaceFileRef stored;
  ASSERT_TRUE(cloud().UploadSpaceFile(0, platform::Utf8ToUtf16(source.string()).c_str(),
                                      u"description", 0, stored, 0, 1001, 0));
  EXPECT_EQ(stored.drawingId, 1);
  const WString ref = stored.drawingRef;
  EXPECT_EQ(ref, u"1001/1");
  WString found;
  EXPECT_TRUE(cloud().QuerySpaceFile(1001, found, nullptr, 0, 1));
  EXPECT_EQ(found, ref);
  EXPECT_FALSE(cloud().QuerySpaceFile(1001, found, nullptr, 3, 1));  // other folder
  WString name = u"plan.dwg";
  WString byName;
  int32_t id = 99;  // looked up by the name; the id found comes back
  EXPECT_TRUE(cloud().QuerySpaceFileByName(1001, name, byName, 0, id));
  EXPECT_EQ(byName, ref);
  EXPECT_EQ(id, 1);
  int32_t error = 0;
  EXPECT_TRUE(cloud().OpenCloudDrawing(ref.c_str(), error));
  std::filesystem::remove(space_ / "space" / "1001" / "0" / "plan.dwg");
  EXPECT_FALSE(cloud().OpenCloudDrawing(ref.c_str(), error));
  EXPECT_EQ(error, 406);
  EXPECT_EQ(host_.OpenedCloudDrawings(), std::vector<WString>{ref});
  host_.SignIn(4);  // not in the group
  EXPECT_FALSE(cloud().UploadSpaceFile(0, platform::Utf8ToUtf16(source.string()).c_str(),
                                       u"description", 0, stored, 0, 1001, 0));
}

TEST_F(LocalHostBehaviour, SharedSessionsOfOthersAndOfTheUser) {
  SharedSessionInfo state;
  int32_t inSession = -1;
  EXPECT_TRUE(cloud().QuerySharedSessionState(2, state, inSession));
  EXPECT_EQ(inSession, 0);

  SharedSessionInfo full;
  full.participants = 2;
  full.maxParticipants = 2;
  host_.SetSessionOf(1001, full);
  SharedSessionInfo checked;
  EXPECT_FALSE(cloud().CheckSharedSession(1001, 5, 1, 1, &checked));
  EXPECT_EQ(checked.maxParticipants, 2);
  EXPECT_FALSE(cloud().JoinSharedSession(1001, 5, u"t", checked));
  EXPECT_TRUE(cloud().QuerySharedSessionState(1001, state, inSession));
  EXPECT_EQ(inSession, 1);

  EXPECT_TRUE(app().EnterSharedDrawing(platform::WindowHandle::kNone, u"t", 1001, 5, u"1001/1"));
  EXPECT_TRUE(app().IsInSharedSession());
  EXPECT_EQ(std::u16string_view(app().GetSessionKey()), u"group_1001");
  EXPECT_TRUE(cloud().QuerySharedSessionState(kSelf, state, inSession));
  EXPECT_EQ(inSession, 1);
  EXPECT_EQ(state.drawingId, 5);
  app().EndSharedSession();
  EXPECT_FALSE(app().IsInSharedSession());
  ShareTreeSelection selection{1001, {{1, 0, u"a.dwg", u"1001/1", 4}}};
  cloud().ReleaseShareTree(&selection);
  EXPECT_TRUE(selection.drawings.empty());
  cloud().ReleaseShareTree(nullptr);
}

}  // namespace
}  // namespace host::testing

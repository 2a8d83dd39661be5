// The recent-conversation list, conversation names and types.
#include "imsdk/im_sdk.h"
#include "store/chat_db.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

using ConversationsTest = ServiceTest;

std::vector<WString> Ids(const std::vector<RecentConversation>& recent) {
  std::vector<WString> ids;
  for (const RecentConversation& r : recent) ids.push_back(r.info.conv_id);
  return ids;
}

TEST_F(ConversationsTest, AddingTheSameConversationTwiceAddsOneRecord) {
  tools->AddRecentConvID(u"10002", 1);
  tools->AddRecentConvID(u"10002", 1);
  tools->AddRecentConvID(u"10002 ", 1);  // another id: exact comparison
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRecentConversationsChanged), 2u);
  std::vector<RecentConversation> recent = tools->RecentConversations();
  ASSERT_EQ(recent.size(), 2u);
  EXPECT_EQ(recent[0].info.conv_type, 1u);
  EXPECT_EQ(recent[0].opened, 1);
  EXPECT_EQ(recent[0].listed, 1);
}

TEST_F(ConversationsTest, DeletingAnUnknownConversationOnlyAnnouncesIt) {
  tools->AddRecentConvID(u"10002", 1);
  ClearSeen();
  tools->DeleteConv(u"nobody");
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRecentConversationsChanged), 1u);
  EXPECT_FALSE(traces.Contains("Require_TIMConvDel enter!!!!!!"));
  EXPECT_EQ(tools->RecentCount(), 1u);
}

TEST_F(ConversationsTest, DeletingAConversationRemovesItHereAndInTheSdk) {
  ASSERT_EQ(engine.SendText("10002", 1, "10001", "hi"), 0);
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(Ids(tools->RecentConversations()), std::vector<WString>{u"10002"});
  tools->DeleteConv(u"10002");
  EXPECT_EQ(tools->RecentCount(), 0u);
  EXPECT_TRUE(traces.Contains("Require_TIMConvDel enter!!!!!!"));
  EXPECT_TRUE(PumpUntil([this] { return traces.Contains("删除会话 成功!"); }));
  EXPECT_FALSE(engine.HasConversation("10001", 1, "10002"));
}

TEST_F(ConversationsTest, ARefusedDeletionStillRemovesTheRecord) {
  tools->AddRecentConvID(u"10002", 1);
  tools->DeleteConv(u"10002");  // SDK not started: refused
  EXPECT_EQ(tools->RecentCount(), 0u);
  EXPECT_TRUE(traces.Contains("删除会话 失败!ret:"));
}

TEST_F(ConversationsTest, EveryConversationListReplacesTheRecentList) {
  ASSERT_EQ(engine.SendText("10002", 1, "10001", "hi"), 0);
  ASSERT_TRUE(SignIn());
  EXPECT_FALSE(tools->IsFirstConvList());
  tools->AddRecentConvID(u"local-only", 1);
  ASSERT_EQ(tools->RecentCount(), 2u);
  ClearSeen();
  tools->RequestConvList();
  ASSERT_TRUE(PumpUntilEvent(kSdkEventConversationList));
  DrainNow();
  EXPECT_EQ(Ids(tools->RecentConversations()), std::vector<WString>{u"10002"});
  EXPECT_GE(CountSeen(msg::kRecentConversationsChanged), 1u);
  // The SDK's last message came with the list.
  std::optional<ConversationInfo_Stru> conv = tools->FindConversation(u"10002");
  ASSERT_TRUE(conv.has_value());
  EXPECT_EQ(conv->last_msg.elems.at(0).text, u"hi");
}

TEST_F(ConversationsTest, ConversationListKeepsTheFirstListFlagWhileEmpty) {
  ASSERT_TRUE(SignIn());
  EXPECT_TRUE(tools->IsFirstConvList());
}

TEST_F(ConversationsTest, ListsThatDoNotParseKeepTheCurrentList) {
  tools->AddRecentConvID(u"10002", 1);
  tools->DealConvListFunc("{not json");
  tools->DealConvListFunc("{\"an\":\"object\"}");
  EXPECT_EQ(tools->RecentCount(), 1u);
}

TEST_F(ConversationsTest, ConversationsOfOtherTypesAreSkipped) {
  tools->DealConvListFunc(R"([{"conv_id":"a","conv_type":0},{"conv_id":"b","conv_type":3},)"
                          R"({"conv_id":"c","conv_type":1},{"conv_id":"d","conv_type":1}])");
  EXPECT_EQ(Ids(tools->RecentConversations()), (std::vector<WString>{u"c", u"d"}));
}

TEST_F(ConversationsTest, GroupsNoLongerJoinedAreDeletedEverywhere) {
  std::string kept = engine.CreateGroup("10002", "kept", {"10001"});
  std::string left = engine.CreateGroup("10002", "left", {"10001"});
  ASSERT_EQ(engine.SendText("10002", 2, kept, "k"), 0);
  ASSERT_EQ(engine.SendText("10002", 2, left, "l"), 0);
  ASSERT_EQ(engine.RemoveGroupMembers("10002", left, {"10001"}), 0);
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([this] { return !tools->Groups().empty(); }));

  WString leftId = platform::Utf8ToUtf16(left);
  MessageStru stored;
  stored.conv_id = leftId;
  stored.conv_type = 2;
  stored.unique_id = 777;
  ElemStru text;
  text.elem_type = kElemText;
  text.text = u"old";
  stored.elems.push_back(text);
  CChatDb::Instance().SaveMessage(u"10001", stored);

  // The list as the SDK gives it while the user is no longer a member.
  tools->DealConvListFunc("[{\"conv_id\":\"" + kept + "\",\"conv_type\":2},{\"conv_id\":\"" +
                          left + "\",\"conv_type\":2}]");
  std::vector<WString> ids = Ids(tools->RecentConversations());
  EXPECT_NE(std::find(ids.begin(), ids.end(), platform::Utf8ToUtf16(kept)), ids.end());
  EXPECT_EQ(std::find(ids.begin(), ids.end(), leftId), ids.end());
  std::vector<MessageStru> rows;
  CChatDb::Instance().QueryCurrentConvMsg(leftId, u"10001", 10, rows);
  EXPECT_TRUE(rows.empty());
  EXPECT_TRUE(PumpUntil([&] { return !engine.HasConversation("10001", 2, left); }));
}

TEST_F(ConversationsTest, TypeAndNameOfAConversation) {
  std::string group = engine.CreateGroup("10002", "设计组", {"10001"}, "g-1");
  ASSERT_EQ(group, "g-1");
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([this] { return !tools->Groups().empty(); }));

  EXPECT_EQ(tools->GetCurrenConvType(u"10002"), 1u);
  EXPECT_EQ(tools->GetCurrenConvType(u"g-1"), 2u);
  EXPECT_EQ(tools->GetCurrenConvType(u"nobody"), 0u);
  EXPECT_EQ(tools->GetCurrenConvType(u"error"), 0u);

  EXPECT_EQ(tools->GetConvNickName(1, u"10002"), u"nick10002");
  EXPECT_EQ(tools->GetConvNickName(2, u"g-1"), u"设计组");
  EXPECT_EQ(tools->GetConvNickName(0, u"10002"), u"");
  EXPECT_EQ(tools->GetConvNickName(2, u"unknown"), u"");
  EXPECT_EQ(tools->GetConvNickName(1, u"10003"), u"");
}

TEST_F(ConversationsTest, FriendsComeBeforeGroupsOfTheSameId) {
  ASSERT_FALSE(engine.CreateGroup("10002", "same", {"10001"}, "10002").empty());
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([this] { return !tools->Groups().empty(); }));
  EXPECT_EQ(tools->GetCurrenConvType(u"10002"), 1u);
}

TEST_F(ConversationsTest, RemarkNamesAFriendBeforeTheNickname) {
  FriendsList_Stru f;
  f.profile.nick_name = u"nick";
  EXPECT_EQ(CChatTools::FriendDisplayName(f), u"nick");
  f.remark = u"remark";
  EXPECT_EQ(CChatTools::FriendDisplayName(f), u"remark");
}

TEST_F(ConversationsTest, PicturesFallBackToTheDefaults) {
  ASSERT_TRUE(SignIn());
  WString image, name;
  tools->GetConvImage(1, u"10002", image, name);
  EXPECT_EQ(image, u"..\\img\\PersonDefaultImg.png");
  EXPECT_EQ(name, u"nick10002");
  tools->GetConvImage(2, u"nogroup", image, name);
  EXPECT_EQ(image, u"..\\img\\GroupDefaultImg.png");
  EXPECT_EQ(name, u"");
  tools->GetConvImage(1, u"stranger", image, name);
  EXPECT_EQ(image, u"..\\img\\PersonDefaultImg.png");
  EXPECT_EQ(name, u"stranger");
}

TEST_F(ConversationsTest, HostGetsTheRecentConversationsOfTypeOneAndTwo) {
  tools->DealConvListFunc(R"([{"conv_id":"10002","conv_type":1},{"conv_id":"g","conv_type":2}])");
  std::vector<RecentConversationEntry> entries;
  tools->ProvideRecentConversations(&entries);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].conversationId, u"10002");
  EXPECT_EQ(entries[0].type, 1);
  EXPECT_EQ(entries[1].conversationId, u"g");
  EXPECT_EQ(entries[1].type, 2);
  tools->ProvideRecentConversations(nullptr);
}

TEST_F(ConversationsTest, TakingARecordMovesItOut) {
  tools->AddRecentConvID(u"a", 1);
  tools->AddRecentConvID(u"b", 2);
  std::optional<RecentConversation> taken = tools->TakeRecentConv(u"b");
  ASSERT_TRUE(taken.has_value());
  EXPECT_EQ(taken->info.conv_type, 2u);
  EXPECT_FALSE(tools->TakeRecentConv(u"b").has_value());
  tools->InsertRecentConvFront(*taken);
  EXPECT_EQ(Ids(tools->RecentConversations()), (std::vector<WString>{u"b", u"a"}));
}

}  // namespace
}  // namespace service_test

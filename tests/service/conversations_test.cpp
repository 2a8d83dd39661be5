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

TEST_F(ConversationsTest, RecentListAddsOnceDeletesAndTakesRecords) {
  tools->AddRecentConvID(u"10002", 1);
  tools->AddRecentConvID(u"10002", 1);
  tools->AddRecentConvID(u"g", 2);
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRecentConversationsChanged), 2u);
  std::vector<RecentConversation> recent = tools->RecentConversations();
  ASSERT_EQ(Ids(recent), (std::vector<WString>{u"10002", u"g"}));
  EXPECT_EQ(recent[0].opened, 1);
  EXPECT_EQ(recent[0].listed, 1);

  std::vector<RecentConversationEntry> entries;
  tools->ProvideRecentConversations(&entries);
  tools->ProvideRecentConversations(nullptr);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].conversationId, u"g");
  EXPECT_EQ(entries[1].type, 2);

  std::optional<RecentConversation> taken = tools->TakeRecentConv(u"g");
  ASSERT_TRUE(taken.has_value());
  EXPECT_EQ(taken->info.conv_type, 2u);
  EXPECT_FALSE(tools->TakeRecentConv(u"g").has_value());
  tools->InsertRecentConvFront(*taken);
  EXPECT_EQ(Ids(tools->RecentConversations()), (std::vector<WString>{u"g", u"10002"}));

  // An unknown id is announced without an SDK call; a known one goes even
  // when the SDK refuses (not started here).
  ClearSeen();
  tools->DeleteConv(u"nobody");
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRecentConversationsChanged), 1u);
  EXPECT_FALSE(traces.Contains("Require_TIMConvDel enter!!!!!!"));
  tools->DeleteConv(u"10002");
  EXPECT_EQ(Ids(tools->RecentConversations()), std::vector<WString>{u"g"});
  EXPECT_TRUE(traces.Contains("删除会话 失败!ret:"));
}

TEST_F(ConversationsTest, SignedInDeletionReachesTheSdk) {
  ASSERT_EQ(engine.SendText("10002", 1, "10001", "hi"), 0);
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(Ids(tools->RecentConversations()), std::vector<WString>{u"10002"});
  tools->DeleteConv(u"10002");
  EXPECT_EQ(tools->RecentCount(), 0u);
  EXPECT_TRUE(PumpUntil([this] { return traces.Contains("删除会话 成功!"); }));
  EXPECT_FALSE(engine.HasConversation("10001", 1, "10002"));
}

TEST_F(ConversationsTest, EveryConversationListReplacesTheRecentList) {
  ASSERT_EQ(engine.SendText("10002", 1, "10001", "hi"), 0);
  ASSERT_TRUE(SignIn());
  EXPECT_FALSE(tools->IsFirstConvList());
  tools->AddRecentConvID(u"local-only", 1);
  ClearSeen();
  tools->RequestConvList();
  ASSERT_TRUE(PumpUntilEvent(kSdkEventConversationList));
  DrainNow();
  EXPECT_EQ(Ids(tools->RecentConversations()), std::vector<WString>{u"10002"});
  EXPECT_GE(CountSeen(msg::kRecentConversationsChanged), 1u);
  std::optional<ConversationInfo_Stru> conv = tools->FindConversation(u"10002");
  ASSERT_TRUE(conv.has_value());
  EXPECT_EQ(conv->last_msg.elems.at(0).text, u"hi");
}

TEST_F(ConversationsTest, ListsKeepOnlyChatTypesAndUnparsableListsChangeNothing) {
  ASSERT_TRUE(SignIn());
  EXPECT_TRUE(tools->IsFirstConvList());  // the empty list kept the flag
  tools->AddRecentConvID(u"10002", 1);
  tools->DealConvListFunc("{not json");
  tools->DealConvListFunc("{\"an\":\"object\"}");
  EXPECT_EQ(tools->RecentCount(), 1u);
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
  stored.elems.push_back(ElemStru{});
  stored.elems[0].text = u"old";
  CChatDb::Instance().SaveMessage(u"10001", stored);
  ASSERT_EQ(StoredRows(leftId).size(), 1u);

  tools->DealConvListFunc("[{\"conv_id\":\"" + kept + "\",\"conv_type\":2},{\"conv_id\":\"" + left +
                          "\",\"conv_type\":2}]");
  EXPECT_EQ(Ids(tools->RecentConversations()), std::vector<WString>{platform::Utf8ToUtf16(kept)});
  EXPECT_TRUE(StoredRows(leftId).empty());
  EXPECT_TRUE(PumpUntil([&] { return !engine.HasConversation("10001", 2, left); }));
}

TEST_F(ConversationsTest, TypeAndNameOfAConversationFriendsFirst) {
  ASSERT_EQ(engine.CreateGroup("10002", "设计组", {"10001"}, "g-1"), "g-1");
  ASSERT_EQ(engine.CreateGroup("10002", "same", {"10001"}, "10002"), "10002");
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(PumpUntil([this] { return tools->Groups().size() == 2; }));
  const struct {
    const char16_t* id;
    uint32_t type;
  } types[] = {{u"10002", 1}, {u"g-1", 2}, {u"nobody", 0}, {u"error", 0}};
  for (const auto& c : types) EXPECT_EQ(tools->GetCurrenConvType(c.id), c.type);

  EXPECT_EQ(tools->GetConvNickName(1, u"10002"), u"nick10002");
  EXPECT_EQ(tools->GetConvNickName(2, u"g-1"), u"设计组");
  EXPECT_EQ(tools->GetConvNickName(0, u"10002"), u"");
  EXPECT_EQ(tools->GetConvNickName(2, u"unknown"), u"");
  EXPECT_EQ(tools->GetConvNickName(1, u"10003"), u"");
}

}  // namespace
}  // namespace service_test

// Every parser survives any byte string: it answers false or keeps what it
// could read, and never crashes.

#include <gtest/gtest.h>

#include "platform/trace.h"
#include "records/conversation_parser.h"
#include "records/entry_limits.h"
#include "records/group_parser.h"
#include "records/json_reader.h"
#include "records/message_parser.h"
#include "records/profile_parser.h"

namespace {

std::vector<std::string> HostileTexts() {
  return {"",
          "not json",
          "{\"message_conv_id\":",
          "{}",
          "null",
          "42",
          "\"text\"",
          std::string(200000, '['),
          std::string(200000, '[') + std::string(200000, ']'),
          "[" + std::string(500, '{') + "]",
          "[1e999999]",
          "[{\"message_server_time\":-1e300}]",
          "[{\"message_conv_id\":\"\xff\xfe\xc0\x80\xed\xa0\x80\"}]",
          "[{\"message_conv_id\":\"a\\u0000b\\ud800\"}]",
          std::string("[\0]", 3)};
}

TEST(BadInput, EveryParserSurvives) {
  for (const std::string& text : HostileTexts()) {
    SCOPED_TRACE(text.substr(0, 40));
    std::vector<MessageStru> messages;
    const bool parsed = records::ParseMessageArray(text, messages);
    EXPECT_TRUE(parsed || messages.empty());
    std::vector<ConversationInfo_Stru> conversations;
    std::vector<FriendsList_Stru> friends;
    std::vector<UserProfile> profiles;
    std::vector<GroupMemberInfo_Stru> members;
    records::ParseConversationArray(text, conversations);
    records::ParseFriendArray(text, friends);
    records::ParseUserProfileArray(text, profiles);
    records::ParseGroupMemberArray(text, members);
    Json::Value root;
    if (!records::ParseJsonText(text, root)) continue;
    // The single-record parsers on whatever the text held, and on its first entry.
    for (const Json::Value* v : {&root, root.isArray() && !root.empty() ? &root[0] : &root}) {
      MessageStru msg;
      MessageLocator locator;
      PendencyPage page;
      GroupTipsEvent event;
      records::ParseMessage(*v, msg);
      records::ParseSelfMessage(*v, msg);
      records::ParseMessageLocator(*v, locator);
      records::ParsePendencyPage(*v, page);
      records::ParseGroupTipsEvent(*v, event);
    }
  }
  std::vector<MessageStru> list;
  EXPECT_FALSE(records::ParseMessageArray("{\"message_conv_id\":\"c\"}", list));
  EXPECT_FALSE(records::ParseMessageArray(std::string(200000, '['), list));
  EXPECT_TRUE(list.empty());
}

TEST(BadInput, InvalidUtf8BecomesReplacementCharacters) {
  std::vector<MessageStru> list;
  ASSERT_TRUE(
      records::ParseMessageArray("[{\"message_conv_id\":\"a\xff"
                                 "b\",\"message_elem_array\":[{\"elem_type\":0,"
                                 "\"text_elem_content\":\"\xe4\xbd\"}]}]",
                                 list));
  EXPECT_EQ(list.at(0).conv_id, u"a\uFFFDb");
  EXPECT_EQ(list.at(0).elems.at(0).text, u"\uFFFD");
}

TEST(BadInput, NumbersOutOfRangeFaultOnlyTheirRecord) {
  platform::ScopedTraceCapture trace;
  std::vector<MessageStru> list;
  ASSERT_TRUE(records::ParseMessageArray(
      R"([{"message_conv_id":"a","message_server_time":1e30},{"message_conv_id":"b"}])", list));
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0].server_time, 0u);
  EXPECT_EQ(list[1].conv_id, u"b");
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>MessageStru"), 1u);
}

std::string Repeated(const std::string& entry, size_t count) {
  std::string text;
  text.reserve((entry.size() + 1) * count);
  for (size_t i = 0; i < count; ++i) text += (i ? "," : "") + entry;
  return text;
}

// Lists over their caps keep their first entries and trace the cut; the text's
// shared budget stops many capped lists from adding up.
TEST(BadInput, OversizedListsAreCutAndTraced) {
  platform::ScopedTraceCapture trace;
  std::vector<MessageStru> messages;
  ASSERT_TRUE(records::ParseMessageArray("[" + Repeated("{}", 100000) + "]", messages));
  EXPECT_EQ(messages.size(), records::kMaxMessagesPerText);

  messages.clear();
  const std::string elem = R"({"elem_type":0,"text_elem_content":"x"})";
  ASSERT_TRUE(records::ParseMessageArray(
      R"([{"message_elem_array":[)" + Repeated(elem, 50000) + R"(]},{"message_conv_id":"b"}])",
      messages));
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0].elems.size(), records::kMaxElemsPerMessage);
  EXPECT_EQ(messages[1].conv_id, u"b");

  std::vector<ConversationInfo_Stru> conversations;
  const std::string conversation =
      R"({"conv_last_msg":{"message_elem_array":[)" + Repeated("{}", 32) + "]}}";
  ASSERT_TRUE(
      records::ParseConversationArray("[" + Repeated(conversation, 3000) + "]", conversations));
  size_t elems = 0;
  for (const auto& c : conversations) elems += c.last_msg.elems.size();
  EXPECT_LE(conversations.size() + elems, records::kMaxEntriesPerText);

  EXPECT_TRUE(trace.Contains("message array: kept 1000 of 100000 entries"));
  EXPECT_TRUE(trace.Contains("message_elem_array: kept 32 of 50000 entries"));
}

}  // namespace

// Conversations, profiles, friends, requests and groups.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/trace.h"
#include "records/conversation_parser.h"
#include "records/group_parser.h"
#include "records/json_reader.h"
#include "records/profile_parser.h"

namespace {

Json::Value Json(const std::string& text) {
  Json::Value root;
  EXPECT_TRUE(records::ParseJsonText(text, root)) << text;
  return root;
}

std::string DataFile(const char* name) {
  const char* dir = std::getenv("IM_TEST_DATA_DIR");
  std::ifstream in(std::string(dir ? dir : "tests/data") + "/records/" + name);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(ConversationParser, LastMessageIsEmptyWithoutConvLastMsg) {
  ConversationInfo_Stru conv;
  EXPECT_TRUE(records::ParseConversation(
      Json(R"({"conv_id":"g1","conv_type":2,"conv_owner":"me","conv_unread_num":4,
               "conv_active_time":1700000000,"conv_is_has_lastmsg":true,"conv_is_has_draft":true})"),
      conv));
  const ConversationInfo_Stru expected{.conv_id = u"g1",
                                       .conv_type = 2,
                                       .owner = u"me",
                                       .unread_num = 4,
                                       .active_time = 1700000000,
                                       .has_last_msg = true,
                                       .has_draft = true};
  EXPECT_TRUE(conv == expected);
  EXPECT_TRUE(conv.last_msg == MessageStru{});
}

TEST(ConversationParser, LastMessageGoesThroughTheMessageParser) {
  std::vector<ConversationInfo_Stru> list;
  platform::ScopedTraceCapture trace;
  ASSERT_TRUE(records::ParseConversationArray(
      R"([{"conv_id":"u2","conv_last_msg":{"message_conv_id":"u2","message_elem_array":[
            {"elem_type":3,"custom_elem_data":"{\"msgType\":1,\"data\":{\"fileName\":\"a.dwg\"}}"},
            {"elem_type":3,"custom_elem_data":"{\"msgType\":3}"}]},"conv_is_has_draft":true},
          {"conv_id":"u3","conv_last_msg":{"message_status":"sent"},"conv_is_has_draft":true},
          {"conv_id":"u4","conv_unread_num":-1,"conv_type":{}}])",
      list));
  ASSERT_EQ(list.size(), 3u);
  ASSERT_EQ(list[0].last_msg.elems.size(), 1u);
  EXPECT_EQ(list[0].last_msg.elems[0].drawing.fileName, u"a.dwg");
  EXPECT_EQ(list[0].last_msg.dropped_custom_count, 1u);
  // A faulty last message is the message's own fault; the conversation goes on.
  EXPECT_TRUE(list[1].has_draft);
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>MessageStru"), 1u);
  EXPECT_EQ(list[2].conv_id, u"u4");
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>ConversationInfo_Stru"), 1u);
}

TEST(ProfileParser, FriendListFromFixture) {
  platform::ScopedTraceCapture trace;
  std::vector<FriendsList_Stru> friends;
  ASSERT_TRUE(records::ParseFriendArray(DataFile("friends.json"), friends));
  ASSERT_EQ(friends.size(), 2u);
  const FriendsList_Stru expected{
      .identifier = u"li.lei",
      .group_names = {u"同事", u"设计"},
      .remark = u"老李",
      .add_wording = u"我是李雷",
      .add_source = u"AddSource_Type_PC",
      .add_time = 1700000000,
      .profile = {.identifier = u"li.lei",
                  .nick_name = u"李雷",
                  .gender = 1,
                  .face_url = u"https://faces.example/li.png",
                  .self_signature = u"画图中",
                  .add_permission = 2,
                  .location = u"上海",
                  .language = 2052,
                  .birthday = 19900101,
                  .level = 3,
                  .role = 4,
                  .custom_strings = {{u"Tag_Profile_Custom_Org", u"Ostrel"}}},
      .custom_strings = {{u"Tag_SNS_Custom_Team", u"CAD"}}};
  EXPECT_TRUE(friends[0] == expected);
  // The second fails at its group names, before its remark.
  EXPECT_EQ(friends[1].identifier, u"han.mei");
  EXPECT_TRUE(friends[1].remark.empty());
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>FriendsList_Stru"), 1u);
}

TEST(ProfileParser, LocationIsTextInAProfile) {
  UserProfile profile;
  EXPECT_TRUE(records::ParseUserProfile(Json(R"({"user_profile_location":"北京"})"), profile));
  EXPECT_EQ(profile.location, u"北京");
  platform::ScopedTraceCapture trace;
  UserProfile numbers;
  EXPECT_FALSE(records::ParseUserProfile(
      Json(R"({"user_profile_nick_name":"n","user_profile_gender":"male"})"), numbers));
  EXPECT_EQ(numbers.nick_name, u"n");
  EXPECT_TRUE(trace.Contains(">>>>>>>>>>>>>>>>>>>>>>>>>UserProfile"));
}

TEST(ProfileParser, PendencyPage) {
  platform::ScopedTraceCapture trace;
  PendencyPage page;
  EXPECT_TRUE(
      records::ParsePendencyPage(Json(R"({"pendency_page_start_time":1,"pendency_page_unread_num":2,
               "pendency_page_current_seq":3,"pendency_page_pendency_info_array":[
                 {"friend_add_pendency_info_type":1,"friend_add_pendency_info_idenitifer":"u5",
                  "friend_add_pendency_info_nick_name":"五","friend_add_pendency_info_add_time":9,
                  "friend_add_pendency_info_add_source":"AddSource_Type_PC",
                  "friend_add_pendency_info_add_wording":"hi"},
                 {"friend_add_pendency_info_type":-1,"friend_add_pendency_info_idenitifer":"u6",
                  "friend_add_pendency_info_nick_name":{}}]})"),
                                 page));
  const PendencyPage expected{.start_time = 1,
                              .unread_num = 2,
                              .current_seq = 3,
                              .pendencies = {{.type = 1,
                                              .identifier = u"u5",
                                              .nick_name = u"五",
                                              .add_time = 9,
                                              .add_source = u"AddSource_Type_PC",
                                              .add_wording = u"hi"},
                                             {.type = 4294967295u, .identifier = u"u6"}}};
  EXPECT_TRUE(page == expected);
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>FriendAddPendency"), 1u);
}

TEST(ProfileParser, FriendAddRequest) {
  EXPECT_EQ(records::BuildFriendAddRequest(u"u7", u"七", u"AddSource_Type_PC", u"请加我"),
            Json(R"({"friend_add_pendency_identifier":"u7","friend_add_pendency_nick_name":"七",
                     "friend_add_pendency_add_source":"AddSource_Type_PC",
                     "friend_add_pendency_add_wording":"请加我"})"));
}

TEST(GroupParser, MembersWithCustomInfo) {
  platform::ScopedTraceCapture trace;
  std::vector<GroupMemberInfo_Stru> members;
  ASSERT_TRUE(records::ParseGroupMemberArray(
      R"([{"group_member_info_identifier":"a","group_member_info_join_time":10,
           "group_member_info_member_role":400,"group_member_info_msg_flag":1,
           "group_member_info_msg_seq":5,"group_member_info_shutup_time":0,
           "group_member_info_name_card":"甲","group_member_info_custom_info":[
             {"group_member_info_custom_string_info_key":"k","group_member_info_custom_string_info_value":"v"},
             {"group_member_info_custom_string_info_key":["bad"]}]}])",
      members));
  const GroupMemberInfo_Stru expected{.identifier = u"a",
                                      .join_time = 10,
                                      .member_role = 400,
                                      .msg_flag = 1,
                                      .msg_seq = 5,
                                      .name_card = u"甲",
                                      .custom_info = {{u"k", u"v"}, {}}};
  ASSERT_EQ(members.size(), 1u);
  EXPECT_TRUE(members[0] == expected);
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>GroupMemberInfoCustemString_Stru"), 1u);
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>GroupMemberInfo_Stru"), 0u);
}

TEST(GroupParser, TipsEventReadsUnsignedKindsAndMembers) {
  platform::ScopedTraceCapture trace;
  GroupTipsEvent event;
  EXPECT_TRUE(records::ParseGroupTipsEvent(
      Json(R"({"group_tips_elem_tip_type":6,"group_tips_elem_op_user":"op",
               "group_tips_elem_group_name":"G","group_tips_elem_group_id":"g1",
               "group_tips_elem_time":1700000000,"group_tips_elem_user_array":["a"],
               "group_tips_elem_group_change_info_array":[
                 {"group_tips_group_change_info_flag":5,"group_tips_group_change_info_value":"a"},
                 {"group_tips_group_change_info_flag":"x"}],
               "group_tips_elem_op_group_memberinfo":{"group_member_info_identifier":"op",
                 "group_member_info_member_role":300},
               "group_tips_elem_changed_group_memberinfo_array":[{"group_member_info_identifier":"a"}],
               "group_tips_elem_member_num":12,"group_tips_elem_platform":"Windows"})"),
      event));
  const GroupTipsEvent expected{.tip_type = 6,
                                .op_user = u"op",
                                .group_name = u"G",
                                .group_id = u"g1",
                                .time = 1700000000,
                                .users = {u"a"},
                                .group_changes = {{.flag = 5, .value = u"a"}, {}},
                                .op_member = {.identifier = u"op", .member_role = 300},
                                .changed_members = {{.identifier = u"a"}},
                                .member_num = 12,
                                .platform = u"Windows"};
  EXPECT_TRUE(event == expected);
  EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>GroupTipGroupChangeInfoStru"), 1u);
}

}  // namespace

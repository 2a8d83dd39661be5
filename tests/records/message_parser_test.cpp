#include "records/message_parser.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/trace.h"
#include "records/json_reader.h"

namespace {

Json::Value Json(const std::string& text) {
  Json::Value root;
  EXPECT_TRUE(records::ParseJsonText(text, root)) << text;
  return root;
}

// Download parameters have their own tests; the tables compare the rest.
MessageStru WithoutDownloadParams(MessageStru msg) {
  for (ElemStru& e : msg.elems) {
    e.orig_download_param = e.thumb_download_param = e.large_download_param = "";
    e.download_param = e.image_download_param = "";
  }
  return msg;
}

// An element as it comes out of a message with conv id "c1", sent by self
// from platform 2.
ElemStru Elem(int32_t type) {
  return ElemStru{.conv_id = u"c1", .is_from_self = true, .platform = 2, .elem_type = type};
}

std::string MessageWith(const std::string& elems) {
  return R"({"message_conv_id":"c1","message_is_from_self":true,"message_platform":2,
             "message_elem_array":[)" +
         elems + "]}";
}

struct MessageCase {
  const char* name;
  std::string json;
  MessageStru expected;
  // The text after the record's name in the fault line (jsoncpp's own words);
  // nullptr: the message parses cleanly.
  const char* fault = nullptr;
};

MessageStru Header(std::vector<ElemStru> elems, uint32_t dropped = 0) {
  return MessageStru{.conv_id = u"c1",
                     .is_from_self = true,
                     .platform = 2,
                     .elems = std::move(elems),
                     .dropped_custom_count = dropped};
}

std::vector<MessageCase> MessageCases() {
  ElemStru drawing_file = Elem(kElemCustom);
  drawing_file.custom_data =
      uR"({"msgType":1,"data":{"fileId":7,"fileName":"a.dwg","fileSize":12,"subType":1,"ts":9}})";
  drawing_file.drawing = {
      .msgType = 1, .fileId = 7, .fileName = u"a.dwg", .fileSize = 12, .subType = 1, .ts = 9};
  ElemStru shared_chat = Elem(kElemCustom);
  shared_chat.custom_data =
      uR"({"msgType":2,"data":{"content":"hi","fromUserName":"Li","instruct":4,"type":1,"fileId":3,"fileName":"x"}})";
  shared_chat.drawing = {
      .msgType = 2, .type = 1, .content = u"hi", .fromUserName = u"Li", .instruct = 4};
  ElemStru big_file = Elem(kElemFile);
  big_file.file_name = u"big.iso";
  big_file.file_size = -1294967296;
  ElemStru text = Elem(kElemText);
  text.text = u"你好";
  ElemStru tips = Elem(kElemGroupTips);
  tips.tip_type = 6;
  tips.group_id = u"g1";
  tips.users = {u"a", u"b"};
  tips.group_changes = {{.flag = 1, .value = u"New", .key = u"k"}};
  tips.member_changes = {{.identifier = u"a", .shutup_time = 60}};
  tips.op_user_info = {.nick_name = u"Op", .face_url = u"f"};
  tips.changed_users = {{.nick_name = u"A"}};
  ElemStru profile = Elem(kElemProfileChange);
  profile.change_type = 2;
  profile.from_identifier = u"u9";
  profile.profile_item = {.nick_name = u"N", .gender = 1};

  return {
      {"full header",
       R"({"message_conv_id":"u2","message_conv_type":1,"message_sender":"u2",
           "message_server_time":1700000000123,"message_is_from_self":false,
           "message_platform":3,"message_is_read":true,"message_status":2,
           "message_unique_id":18446744073709551615,
           "message_sender_profile":{"user_profile_nick_name":"张三","user_profile_face_url":"http://f"},
           "message_elem_array":[{"elem_type":0,"text_elem_content":"hi"}]})",
       MessageStru{.conv_id = u"u2",
                   .conv_type = 1,
                   .sender = u"u2",
                   .server_time = 1700000000123,
                   .platform = 3,
                   .is_read = true,
                   .status = 2,
                   .unique_id = 18446744073709551615u,
                   .sender_profile = {u"张三", u"http://f"},
                   .elems = {ElemStru{.conv_id = u"u2", .platform = 3, .text = u"hi"}}}},
      {"missing keys read as zero values", "{}", MessageStru{}},
      {"custom msgType 0 is dropped and counted",
       MessageWith(R"({"elem_type":3,"custom_elem_data":"{\"msgType\":0}"})"), Header({}, 1)},
      {"custom msgType 3 is dropped and counted",
       MessageWith(R"({"elem_type":3,"custom_elem_data":"{\"msgType\":3,\"data\":{}}"})"),
       Header({}, 1)},
      {"custom payload that is not JSON is dropped",
       MessageWith(R"({"elem_type":3,"custom_elem_data":"not json"})"), Header({}, 1)},
      {"custom payload with a wrong msgType type is dropped",
       MessageWith(R"({"elem_type":3,"custom_elem_data":"{\"msgType\":\"1\"}"})"), Header({}, 1)},
      {"drawing file and shared-chat message are kept, each with only its own keys",
       MessageWith(
           R"({"elem_type":3,"custom_elem_data":"{\"msgType\":1,\"data\":{\"fileId\":7,\"fileName\":\"a.dwg\",\"fileSize\":12,\"subType\":1,\"ts\":9}}"},
              {"elem_type":3,"custom_elem_data":"{\"msgType\":2,\"data\":{\"content\":\"hi\",\"fromUserName\":\"Li\",\"instruct\":4,\"type\":1,\"fileId\":3,\"fileName\":\"x\"}}"})"),
       Header({drawing_file, shared_chat})},
      {"face and location keep only their kind", MessageWith(R"({"elem_type":6,"face_elem_index":3},
                      {"elem_type":7,"location_elem_desc":"here","location_elem_latitude":1.5})"),
       Header({Elem(kElemFace), Elem(kElemLocation)})},
      {"a file over 2 GiB has a negative size",
       MessageWith(
           R"({"elem_type":4,"file_elem_file_name":"big.iso","file_elem_file_size":3000000000})"),
       Header({big_file})},
      {"group tips with change lists",
       MessageWith(R"({"elem_type":5,"group_tips_elem_tip_type":6,"group_tips_elem_group_id":"g1",
           "group_tips_elem_user_array":["a","b"],
           "group_tips_elem_group_change_info_array":[{"group_tips_group_change_info_flag":1,
               "group_tips_group_change_info_value":"New","group_tips_group_change_info_key":"k"}],
           "group_tips_elem_member_change_info_array":[{"group_tips_member_change_info_identifier":"a",
               "group_tips_member_change_info_shutupTime":60}],
           "group_tips_elem_op_user_info":{"user_profile_nick_name":"Op","user_profile_face_url":"f"},
           "group_tips_elem_changed_user_info_array":[{"user_profile_nick_name":"A"}]})"),
       Header({tips})},
      {"profile change keeps the item's text and drops its numbers",
       MessageWith(R"({"elem_type":11,"profile_change_elem_change_type":2,
           "profile_change_elem_from_identifer":"u9",
           "profile_change_elem_user_profile_item":{"user_profile_item_nick_name":"N",
               "user_profile_item_gender":1,"user_profile_item_location":86,
               "user_profile_item_level":3}})"),
       Header({profile})},
      {"a wrong type in the header keeps what came before",
       R"({"message_conv_id":"c9","message_conv_type":2,"message_server_time":"soon",
           "message_sender":"s","message_elem_array":[{"elem_type":0}]})",
       MessageStru{.conv_id = u"c9", .conv_type = 2, .sender = u"s"},
       "Value is not convertible to UInt64"},
      {"a wrong type in an element stops the rest of the message",
       MessageWith(R"({"elem_type":0,"text_elem_content":"你好"},
                      {"elem_type":4,"file_elem_file_size":"big"},
                      {"elem_type":0,"text_elem_content":"never"})"),
       Header({text}), ""},
      {"an element that is not an object stops the message",
       MessageWith(R"({"elem_type":0,"text_elem_content":"你好"}, 5)"), Header({text}), ""},
  };
}

TEST(MessageParser, FillsRecordsAsTheTableSays) {
  for (const MessageCase& c : MessageCases()) {
    SCOPED_TRACE(c.name);
    platform::ScopedTraceCapture trace;
    MessageStru msg;
    EXPECT_EQ(records::ParseMessage(Json(c.json), msg), c.fault == nullptr);
    EXPECT_TRUE(WithoutDownloadParams(msg) == c.expected);
    EXPECT_EQ(trace.Count(">>>>>>>>>>>>>>>>>>>>>>>>>MessageStru"), c.fault ? 1u : 0u);
    EXPECT_TRUE(!c.fault ||
                trace.Contains(std::string(">>>>>>>>>>>>>>>>>>>>>>>>>MessageStru") + c.fault));
  }
}

TEST(MessageParser, SelfMessageReadsOnlyItsKeys) {
  platform::ScopedTraceCapture trace;
  MessageStru msg;
  EXPECT_TRUE(records::ParseSelfMessage(
      Json(R"({"message_sender":"me","message_server_time":5,"message_conv_id":"c1",
               "message_conv_type":2,"message_platform":4,"message_is_read":true,
               "message_is_from_self":true,"message_unique_id":77,"message_status":2,
               "message_elem_array":[{"elem_type":0,"text_elem_content":"x"},
                 {"elem_type":3,"custom_elem_data":"{\"msgType\":3,\"data\":{}}"}]})"),
      msg));
  const MessageStru expected{.conv_id = u"c1",
                             .conv_type = 2,
                             .sender = u"me",
                             .server_time = 5,
                             .platform = 4,
                             .elems = {ElemStru{.conv_id = u"c1", .platform = 4, .text = u"x"}},
                             .dropped_custom_count = 1};
  EXPECT_TRUE(msg == expected);

  MessageStru faulty;
  EXPECT_FALSE(
      records::ParseSelfMessage(Json(R"({"message_sender":"me","message_platform":[]})"), faulty));
  EXPECT_EQ(faulty.sender, u"me");
  EXPECT_TRUE(trace.Contains(">>>>>>>>>>>>>>>>>>>>>>>>>SaveSelfMsgToMap"));
  EXPECT_FALSE(trace.Contains(">>>>>>>>>>>>>>>>>>>>>>>>>MessageStru"));
}

TEST(MessageParser, LocatorReadsConvIdAndTypeAsBooleans) {
  struct Case {
    const char* json;
    MessageLocator expected;
  };
  const Case cases[] = {
      {R"({"message_locator_conv_id":"group_1","message_locator_conv_type":2,
           "message_locator_is_revoked":true,"message_locator_time":1700000000,
           "message_locator_seq":12,"message_locator_is_self":false,
           "message_locator_rand":4294967296,"message_locator_unique_id":99})",
       {.conv_id = true,
        .conv_type = true,
        .is_revoked = true,
        .time = 1700000000,
        .seq = 12,
        .rand = 4294967296u,
        .unique_id = 99}},
      {R"({"message_locator_conv_id":"","message_locator_conv_type":0})", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.json);
    MessageLocator locator;
    EXPECT_TRUE(records::ParseMessageLocator(Json(c.json), locator));
    EXPECT_TRUE(locator == c.expected);
  }
  platform::ScopedTraceCapture trace;
  MessageLocator locator;
  EXPECT_FALSE(records::ParseMessageLocator(
      Json(R"({"message_locator_conv_id":"x","message_locator_seq":"1"})"), locator));
  EXPECT_TRUE(locator.conv_id);
  EXPECT_TRUE(trace.Contains(">>>>>>>>>>>>>>>>>>>>>>>>>MessageLocator"));
}

TEST(MessageParser, ParsesOnSeveralThreadsAtOnce) {
  // The receive path parses on the window thread while send results and
  // downloads arrive on the SDK's thread.
  const std::string text =
      R"([{"message_conv_id":"c","message_elem_array":[{"elem_type":1,"image_elem_orig_id":"o"},
           {"elem_type":3,"custom_elem_data":"{\"msgType\":1,\"data\":{\"fileId\":2}}"}]}])";
  std::vector<MessageStru> expected;
  ASSERT_TRUE(records::ParseMessageArray(text, expected));
  std::vector<std::thread> threads;
  std::atomic<int> mismatches{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        std::vector<MessageStru> list;
        if (!records::ParseMessageArray(text, list) || !(list == expected)) ++mismatches;
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(mismatches.load(), 0);
}

}  // namespace

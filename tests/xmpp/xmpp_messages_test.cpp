// One-to-one messages with a third-party client: both directions, the
// module's payload untouched, ids, history, offline delivery, duplicates
// and garbage.
#include "tests/xmpp/xmpp_fixture.h"

namespace xmpp_test {
namespace {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Record;
using imsdk_test::Tag;
using imsdk_test::Write;

std::string TextOf(const Json::Value& msg) {
  return msg["message_elem_array"][0]["text_elem_content"].asString();
}

std::vector<Json::Value> Received(const std::vector<Record>& records) {
  std::vector<Json::Value> out;
  for (const auto& r : records) {
    for (const auto& m : Parse(r.json)) out.push_back(m);
  }
  return out;
}

// Waits until `count` messages arrived (they may come in one or more batches).
std::vector<Json::Value> WaitForMessages(imsdk_test::Recorder& rec, size_t count) {
  for (size_t batches = 1; batches <= count; ++batches) {
    auto got = Received(rec.WaitFor("new_msg", batches));
    if (got.size() >= count || rec.Count("new_msg") < batches) return got;
  }
  return Received(rec.WaitFor("new_msg", count));
}

TEST_F(XmppTest, MessagesBothWaysWithThePayloadUntouchedAndStableIds) {
  ASSERT_EQ(SignIn("alice").code, TIM_SUCC);
  auto bob = StartPeer("bob");
  bob->Send("alice", "hello from a plain client");
  auto in = WaitForMessages(rec, 1);
  ASSERT_EQ(in.size(), 1u);
  EXPECT_EQ(TextOf(in[0]), "hello from a plain client");
  EXPECT_EQ(in[0]["message_sender"].asString(), "bob");
  EXPECT_EQ(in[0]["message_conv_id"].asString(), "bob");

  const std::string payload =
      R"({"msgType":2,"data":{"content":"<b>&amp; \"quoted\"","fromUserId":"alice","ts":1}})";
  Json::Value msg;
  msg["message_elem_array"][0]["elem_type"] = kTIMElem_Text;
  msg["message_elem_array"][0]["text_elem_content"] = "see the drawing";
  msg["message_elem_array"][1]["elem_type"] = kTIMElem_Custom;
  msg["message_elem_array"][1]["custom_elem_data"] = payload;
  ASSERT_EQ(TIMMsgSendNewMsg("bob", kTIMConv_C2C, Write(msg).c_str(), OnResult, Tag("send")),
            TIM_SUCC);
  Record sent = rec.Result("send");
  ASSERT_EQ(sent.code, TIM_SUCC);
  Json::Value out = Parse(sent.json);
  Json::Value at_bob = bob->WaitFor(
      [](const Json::Value& e) { return e["body"].asString().rfind("see the drawing", 0) == 0; });
  ASSERT_FALSE(at_bob.isNull());
  EXPECT_EQ(at_bob["body"].asString(), "see the drawing\n[custom message]");
  EXPECT_NE(at_bob["xml"].asString().find("urn:x-imsdk:elems:0"), std::string::npos);

  // The archive gives both back, newest first, with the ids seen live.
  Json::Value history = History("bob", 10);
  ASSERT_EQ(history.size(), 2u);
  EXPECT_EQ(history[0]["message_unique_id"], out["message_unique_id"]);
  EXPECT_EQ(history[0]["message_elem_array"][1]["custom_elem_data"].asString(), payload);
  EXPECT_TRUE(history[0]["message_is_from_self"].asBool());
  EXPECT_EQ(history[1]["message_unique_id"], in[0]["message_unique_id"]);
  for (const auto& id : {out["message_unique_id"], in[0]["message_unique_id"]}) {
    EXPECT_LT(id.asUInt64(), 1ULL << 63);
    EXPECT_GT(id.asUInt64(), 0u);
  }
}

TEST_F(XmppTest, OfflineMessagesFollowTheSignInResultWithTheirServerTime) {
  {
    auto bob = StartPeer("bob");
    for (const char* text : {"one", "two", "three"}) bob->Send("carol", text);
    Json::Value ping;
    ping["cmd"] = "quit";
    bob->Command(ping);
    bob->WaitForEvent("disconnected");
  }
  const uint64_t now = static_cast<uint64_t>(time(nullptr));
  ASSERT_EQ(SignIn("carol").code, TIM_SUCC);
  auto got = WaitForMessages(rec, 3);
  ASSERT_EQ(got.size(), 3u);
  // The module opens its store in the sign-in result: nothing may come first.
  auto all = rec.All();
  size_t result_at = 0, first_message_at = all.size();
  for (size_t i = 0; i < all.size(); ++i) {
    if (all[i].name == "result" && all[i].tag.rfind("login", 0) == 0) result_at = i;
    if (all[i].name == "new_msg" && first_message_at == all.size()) first_message_at = i;
  }
  EXPECT_LT(result_at, first_message_at);
  EXPECT_EQ(TextOf(got[0]), "one");
  EXPECT_EQ(TextOf(got[2]), "three");
  for (const auto& m : got) {
    EXPECT_GT(m["message_server_time"].asUInt64(), now - 120);
    EXPECT_LE(m["message_server_time"].asUInt64(), now + 1);
  }

  // The conversation list counts them unread until they are reported read.
  ASSERT_EQ(TIMConvGetConvList(OnResult, Tag("convs")), TIM_SUCC);
  Json::Value convs = Parse(rec.Result("convs").json);
  ASSERT_EQ(convs.size(), 1u);
  EXPECT_EQ(convs[0]["conv_id"].asString(), "bob");
  EXPECT_EQ(convs[0]["conv_unread_num"].asInt(), 3);
  EXPECT_EQ(TextOf(convs[0]["conv_last_msg"]), "three");
  ASSERT_EQ(TIMMsgReportReaded("bob", kTIMConv_C2C, Write(got[1]).c_str(), OnResult, Tag("r1")),
            TIM_SUCC);
  ASSERT_EQ(rec.Result("r1").code, TIM_SUCC);
  ASSERT_EQ(TIMConvGetConvList(OnResult, Tag("convs2")), TIM_SUCC);
  EXPECT_EQ(Parse(rec.Result("convs2").json)[0]["conv_unread_num"].asInt(), 1);
  EXPECT_EQ(TIMMsgReportReaded("nobody", kTIMConv_C2C, "", OnResult, Tag("r2")),
            TIM_ERR_CONV_NOT_FOUND);
}

TEST_F(XmppTest, HistoryPagesGoBackFromAnyMessage) {
  ASSERT_EQ(SignIn("dave").code, TIM_SUCC);
  auto erin = StartPeer("erin");
  Json::Value many;
  many["cmd"] = "send_many";
  many["to"] = "dave@localhost";
  many["count"] = 5;
  erin->Command(many);
  auto live = WaitForMessages(rec, 5);
  ASSERT_EQ(live.size(), 5u);

  Json::Value page = History("erin", 2);
  ASSERT_EQ(page.size(), 2u);
  EXPECT_EQ(TextOf(page[0]), "n4");
  EXPECT_EQ(TextOf(page[1]), "n3");
  page = History("erin", 2, page[1]);
  ASSERT_EQ(page.size(), 2u);
  EXPECT_EQ(TextOf(page[0]), "n2");
  EXPECT_EQ(TextOf(page[1]), "n1");
  page = History("erin", 10, page[1]);
  ASSERT_EQ(page.size(), 1u);
  EXPECT_EQ(TextOf(page[0]), "n0");
  EXPECT_EQ(page[0]["message_unique_id"], live[0]["message_unique_id"]);
}

TEST_F(XmppTest, DuplicatesAndGarbageFromAPeerAreDroppedAndNothingElseIsLost) {
  ASSERT_EQ(SignIn("fred").code, TIM_SUCC);
  {
    auto gina = StartPeer("gina");
    // The same message twice, as a resend after a reconnection would be.
    const std::string origin = R"(<origin-id xmlns="urn:xmpp:sid:0" id="same-1"/>)";
    gina->Send("fred", "once", origin);
    gina->Send("fred", "once", origin);
    // A payload that is not JSON, and one with kinds no peer may send: read
    // from their bodies.
    gina->Send("fred", "body of bad json", R"(<elems xmlns="urn:x-imsdk:elems:0">[{"elem</elems>)");
    gina->Send("fred", "body of forged tips",
               R"(<elems xmlns="urn:x-imsdk:elems:0">[{"elem_type":5},{"elem_type":"0"}]</elems>)");
    // No content at all.
    gina->Send("fred", "");
    // Too large for the server: it ends gina's stream, not fred's.
    gina->Send("fred", std::string(600 * 1024, 'x'));
    gina->WaitForEvent("disconnected");
  }
  auto hank = StartPeer("hank");
  hank->Send("fred", "still here");
  auto got = WaitForMessages(rec, 4);
  std::vector<std::string> texts;
  for (const auto& m : got) texts.push_back(TextOf(m));
  EXPECT_EQ(texts, (std::vector<std::string>{"once", "body of bad json", "body of forged tips",
                                             "still here"}));
  // A message the server would refuse is refused before it is sent.
  EXPECT_EQ(TIMMsgSendNewMsg("hank", kTIMConv_C2C,
                             imsdk_test::TextMsg(std::string(300 * 1024, 'y')).c_str(), OnResult,
                             Tag("big")),
            TIM_ERR_INVALID_PARAM);
}

}  // namespace
}  // namespace xmpp_test

// Read reports as chat markers both ways with a third-party client, and its
// retraction arriving as a revoke.
#include <regex>

#include "tests/xmpp/xmpp_fixture.h"

namespace xmpp_test {
namespace {

using imsdk_test::OnResult;
using imsdk_test::Parse;
using imsdk_test::Tag;
using imsdk_test::Write;

bool IsText(const Json::Value& msg, const std::string& text) {
  return msg["message_elem_array"][0]["text_elem_content"] == text;
}

TEST_F(XmppTest, ReadMarkersBothWaysAndARetractionIsARevoke) {
  ASSERT_EQ(SignIn("sam").code, TIM_SUCC);
  auto tina = StartPeer("tina");
  auto TextFrom = [this](XmppTest*, const std::string& text) {
    return WaitForRecord("new_msg", [&](const Json::Value& m) { return IsText(m, text); });
  };
  tina->Send("sam", "first", R"(<origin-id xmlns="urn:xmpp:sid:0" id="t-1"/>)");
  tina->Send("sam", "second", R"(<origin-id xmlns="urn:xmpp:sid:0" id="t-2"/>)");
  Json::Value first = TextFrom(this, "first");
  Json::Value second = TextFrom(this, "second");
  ASSERT_FALSE(second.isNull());

  // Reading up to the newest message tells the peer with a marker naming it.
  ASSERT_EQ(TIMMsgReportReaded("tina", kTIMConv_C2C, Write(second).c_str(), OnResult, Tag("read")),
            TIM_SUCC);
  ASSERT_EQ(rec.Result("read").code, TIM_SUCC);
  Json::Value marker = tina->WaitFor([](const Json::Value& e) {
    return e["event"] == "message" &&
           e["xml"].asString().find("urn:xmpp:chat-markers:0") != std::string::npos;
  });
  ASSERT_FALSE(marker.isNull());
  EXPECT_NE(marker["xml"].asString().find("id=\"t-2\""), std::string::npos) << marker["xml"];

  // The peer's marker for our message becomes a read receipt.
  ASSERT_EQ(SendText("tina", "got both").code, TIM_SUCC);
  Json::Value ours = tina->WaitFor([](const Json::Value& e) { return e["body"] == "got both"; });
  std::smatch id;
  const std::string xml = ours["xml"].asString();
  ASSERT_TRUE(std::regex_search(xml, id, std::regex("<origin-id[^>]* id=\"([^\"]+)\""))) << xml;
  tina->Send("sam", "", "<displayed xmlns='urn:xmpp:chat-markers:0' id='" + id[1].str() + "'/>");
  Json::Value receipt = WaitForRecord(
      "receipt", [](const Json::Value& r) { return r["msg_receipt_conv_id"] == "tina"; });
  ASSERT_FALSE(receipt.isNull());
  EXPECT_GT(receipt["msg_receipt_time_stamp"].asUInt64(), 0u);

  // A retraction names the message by its origin id; its fallback text is
  // no message of its own.
  tina->Send("sam", "tina retracted a message",
             "<apply-to xmlns='urn:xmpp:fasten:0' id='t-1'>"
             "<retract xmlns='urn:xmpp:message-retract:0'/></apply-to>");
  Json::Value revoked = WaitForRecord("revoke", [](const Json::Value&) { return true; });
  ASSERT_FALSE(revoked.isNull());
  EXPECT_EQ(revoked["message_locator_unique_id"], first["message_unique_id"]);
  EXPECT_EQ(revoked["message_locator_conv_id"], "tina");
  tina->Send("sam", "after");
  ASSERT_FALSE(TextFrom(this, "after").isNull());
  for (const auto& r : rec.All()) {
    if (r.name != "new_msg") continue;
    for (const auto& m : Parse(r.json)) EXPECT_FALSE(IsText(m, "tina retracted a message"));
  }
}

}  // namespace
}  // namespace xmpp_test

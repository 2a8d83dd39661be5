// Conversations, sending and receiving, history, read reports, files.
#include <fstream>
#include <iterator>

#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

std::string TextOf(const Json::Value& msg) {
  return msg["message_elem_array"][0]["text_elem_content"].asString();
}

class MessagingTest : public SdkTest {
 protected:
  void SetUp() override {
    SdkTest::SetUp();
    control.CreateAccount("bob", {"Bob", "http://face/bob", kTIMAddPermission_NeedConfirm, ""});
    SignIn("alice");
    control.MakeFriends("alice", "bob");
  }
  Record Send(const std::string& tag, const std::string& to, const std::string& json) {
    return Call(tag, TIMMsgSendNewMsg, to.c_str(), kTIMConv_C2C, json.c_str());
  }
};

TEST_F(MessagingTest, SendAndReceiveBetweenTheSignedInAndAControlledAccount) {
  Record sent = Send("send", "bob", TextMsg("hello bob"));
  ASSERT_EQ(sent.code, TIM_SUCC);
  Json::Value echo = Parse(sent.json);
  EXPECT_EQ(echo["message_sender"].asString(), "alice");
  EXPECT_TRUE(echo["message_is_from_self"].asBool());
  EXPECT_EQ(echo["message_status"].asInt(), kTIMMsg_SendSucc);
  EXPECT_NE(echo["message_unique_id"].asUInt64(), 0u);
  EXPECT_EQ(control.UnreadCount("bob", 1, "alice"), 1u);
  Json::Value at_bob = Parse(control.LastMessageJson("bob", 1, "alice"));
  EXPECT_EQ(TextOf(at_bob), "hello bob");
  EXPECT_FALSE(at_bob["message_is_from_self"].asBool());
  EXPECT_EQ(at_bob["message_unique_id"], echo["message_unique_id"]);

  ASSERT_EQ(control.SendText("bob", kTIMConv_C2C, "alice", "hi alice"), 0);
  Json::Value got = Parse(rec.WaitFor("new_msg")[0].json);
  ASSERT_EQ(got.size(), 1u);
  EXPECT_EQ(got[0]["message_conv_id"].asString(), "bob");
  EXPECT_EQ(got[0]["message_conv_type"].asInt(), 1);
  EXPECT_EQ(got[0]["message_sender_profile"]["user_profile_nick_name"].asString(), "Bob");
  EXPECT_EQ(got[0]["message_sender_profile"]["user_profile_face_url"].asString(),
            "http://face/bob");

  Json::Value list = CallJson("convs", TIMConvGetConvList);
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0]["conv_id"].asString(), "bob");
  EXPECT_EQ(list[0]["conv_owner"].asString(), "alice");
  EXPECT_EQ(list[0]["conv_unread_num"].asUInt64(), 1u);
  EXPECT_TRUE(list[0]["conv_is_has_lastmsg"].asBool());
  EXPECT_EQ(TextOf(list[0]["conv_last_msg"]), "hi alice");
}

TEST_F(MessagingTest, ConversationListIsMostRecentFirstAndCreateDeleteWork) {
  OpenAccount("carol");
  control.SendText("carol", 1, "alice", "1");
  control.SendText("bob", 1, "alice", "2");
  ASSERT_EQ(Call("create", TIMConvCreate, "dave", 1).code, 0);
  Json::Value list = CallJson("convs", TIMConvGetConvList);
  ASSERT_EQ(list.size(), 3u);
  EXPECT_EQ(list[0]["conv_id"].asString(), "dave");
  EXPECT_FALSE(list[0]["conv_is_has_lastmsg"].asBool());
  EXPECT_EQ(list[1]["conv_id"].asString(), "bob");
  EXPECT_EQ(list[2]["conv_id"].asString(), "carol");
  ASSERT_EQ(Call("del", TIMConvDelete, "carol", 1).code, 0);
  EXPECT_FALSE(control.HasConversation("alice", 1, "carol"));
  EXPECT_EQ(TIMConvDelete("carol", 1, OnResult, Tag("del2")), TIM_ERR_CONV_NOT_FOUND);
}

TEST_F(MessagingTest, HistoryPagesBackwardAndForwardFromAnAnchor) {
  std::vector<uint64_t> ids(25);
  for (int i = 0; i < 25; ++i)
    control.SendText("bob", 1, "alice", "m" + std::to_string(i), &ids[i]);
  int n = 0;
  // Texts of the page of `count` before (or after) the anchor; 0: the newest end.
  auto page = [&](uint64_t anchor, int count, bool forward) {
    Json::Value p;
    p["msg_getmsglist_param_last_msg"] = Json::Value(Json::objectValue);
    if (anchor != 0) p["msg_getmsglist_param_last_msg"]["message_unique_id"] = Json::UInt64(anchor);
    p["msg_getmsglist_param_count"] = count;
    p["msg_getmsglist_param_is_forward"] = forward;
    p["msg_getmsglist_param_is_remble"] = true;
    Json::Value msgs =
        CallJson("p" + std::to_string(n++), TIMMsgGetMsgList, "bob", 1, Write(p).c_str());
    std::vector<std::string> out;
    for (const auto& m : msgs) {
      out.push_back(TextOf(m));
      EXPECT_EQ(m["message_unique_id"].asUInt64(), ids[std::stoi(out.back().substr(1))]);
    }
    return out;
  };
  auto first = page(0, 10, false);
  ASSERT_EQ(first.size(), 10u);
  EXPECT_EQ(first[0], "m24");
  EXPECT_EQ(first[9], "m15");
  EXPECT_EQ(page(ids[15], 10, false)[0], "m14");
  auto third = page(ids[5], 10, false);
  EXPECT_EQ(third.size(), 5u);
  EXPECT_EQ(third.back(), "m0");
  EXPECT_EQ(page(ids[20], 10, true), (std::vector<std::string>{"m21", "m22", "m23", "m24"}));
  EXPECT_EQ(page(ids[0], 10, false).size(), 0u);
}

TEST_F(MessagingTest, ReadReportClearsUnreadAndTellsTheSender) {
  uint64_t first = 0;
  control.SendText("bob", 1, "alice", "a", &first);
  control.SendText("bob", 1, "alice", "b");
  EXPECT_EQ(control.UnreadCount("alice", 1, "bob"), 2u);
  Json::Value upto;
  upto["message_unique_id"] = Json::UInt64(first);
  ASSERT_EQ(Call("r1", TIMMsgReportReaded, "bob", 1, Write(upto).c_str()).code, 0);
  EXPECT_EQ(control.UnreadCount("alice", 1, "bob"), 1u);
  ASSERT_EQ(Call("r2", TIMMsgReportReaded, "bob", 1, nullptr).code, 0);
  EXPECT_EQ(control.UnreadCount("alice", 1, "bob"), 0u);
  // The peer reading alice's message reaches alice as a receipt.
  Send("s", "bob", TextMsg("x"));
  ASSERT_TRUE(control.MarkRead("bob", 1, "alice"));
  Json::Value receipt = Parse(rec.WaitFor("receipt")[0].json);
  EXPECT_EQ(receipt[0]["msg_receipt_conv_id"].asString(), "bob");
}

TEST_F(MessagingTest, SendFailuresTheModuleReactsTo) {
  control.CreateAccount("stranger", {"S", "", kTIMAddPermission_NeedConfirm, ""});
  OpenAccount("open");
  const struct {
    const char* name;
    std::function<void()> arrange;
    const char* to;
    int code;
  } cases[] = {
      {"needs verification", [] {}, "stranger", TIM_ERR_NOT_FRIEND_VERIFY},
      {"allows anyone", [] {}, "open", TIM_SUCC},
      {"peer removed me", [this] { control.RemoveFriend("bob", "alice"); }, "bob",
       TIM_ERR_FRIEND_REMOVED_YOU},
      {"network down", [this] { control.SetNetworkUp(false); }, "open", TIM_ERR_NETWORK},
      {"unknown account", [this] { control.SetNetworkUp(true); }, "ghost",
       TIM_ERR_ACCOUNT_NOT_FOUND},
  };
  for (const auto& c : cases) {
    c.arrange();
    Record r = Send(c.name, c.to, TextMsg(c.name));
    EXPECT_EQ(r.code, c.code) << c.name;
    Json::Value echo = Parse(r.json);
    EXPECT_EQ(echo["message_status"].asInt(), c.code == 0 ? kTIMMsg_SendSucc : kTIMMsg_SendFail)
        << c.name;
    EXPECT_EQ(TextOf(echo), c.name);
  }
  EXPECT_EQ(control.MessageCount("stranger", 1, "alice"), 0u);
  EXPECT_EQ(control.MessageCount("open", 1, "alice"), 1u);
}

TEST_F(MessagingTest, FilesUploadWithProgressAndDownloadWithSizes) {
  std::string source = Scratch("picture.png");
  std::ofstream(source, std::ios::binary) << std::string(3000, 'p');
  ASSERT_EQ(Send("img", "bob", Msg(kTIMElem_Image, "image_elem_orig_path", source)).code, 0);
  std::vector<std::string> progress;  // only what came before the result
  for (const auto& r : rec.All()) {
    if (r.tag == "img") break;
    if (r.name == "upload") progress.push_back(r.json);
  }
  ASSERT_EQ(progress.size(), 2u);
  EXPECT_EQ(progress[1], "3000/3000");

  std::string doc = Scratch("report.pdf");
  std::ofstream(doc, std::ios::binary) << std::string(12345, 'd');
  ASSERT_EQ(control.SendFile("bob", 1, "alice", doc), 0);
  Json::Value elem = Parse(rec.WaitFor("new_msg")[0].json)[0]["message_elem_array"][0];
  EXPECT_EQ(elem["file_elem_file_name"].asString(), "report.pdf");
  EXPECT_EQ(elem["file_elem_file_size"].asInt(), 12345);
  EXPECT_EQ(elem["file_elem_file_path"].asString(), "");
  Json::Value param;
  param["msg_download_elem_param_id"] = elem["file_elem_file_id"];
  param["msg_download_elem_param_type"] = 4;
  param["msg_download_elem_param_url"] = elem["file_elem_url"];
  std::string target = Scratch("downloaded.pdf");
  auto download = [&](const std::string& tag, const std::string& to) {
    return Call(tag, TIMMsgDownloadElemToPath, Write(param).c_str(), to.c_str());
  };
  Record dl = download("dl", target);
  ASSERT_EQ(dl.code, 0);
  EXPECT_EQ(Parse(dl.json)["msg_download_elem_result_current_size"].asUInt64(), 12345u);
  EXPECT_EQ(Parse(dl.json)["msg_download_elem_result_total_size"].asUInt64(), 12345u);
  std::ifstream written(target, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), std::string(12345, 'd'));
  EXPECT_EQ(download("no dir", "/no/such/dir/x").code, TIM_ERR_FILE);
  param["msg_download_elem_param_id"] = "file-999";
  EXPECT_EQ(download("no file", target).code, TIM_ERR_FILE_NOT_FOUND);
  EXPECT_EQ(
      Send("missing", "bob", Msg(kTIMElem_File, "file_elem_file_path", Scratch("absent.bin"))).code,
      TIM_ERR_FILE);
}

TEST_F(MessagingTest, CustomPayloadsTravelUnchangedAndRevokesArrive) {
  const std::string payload = R"({"msgType":1,"data":{"fileName":"a.dwg"}})";
  ASSERT_EQ(control.SendCustom("bob", 1, "alice", payload), 0);
  Json::Value elem = Parse(rec.WaitFor("new_msg")[0].json)[0]["message_elem_array"][0];
  EXPECT_EQ(elem["elem_type"].asInt(), kTIMElem_Custom);
  EXPECT_EQ(elem["custom_elem_data"].asString(), payload);
  uint64_t id = 0;
  control.SendText("bob", 1, "alice", "oops", &id);
  ASSERT_TRUE(control.RevokeMessage("bob", 1, "alice", id));
  Json::Value locator = Parse(rec.WaitFor("revoke")[0].json)[0];
  EXPECT_EQ(locator["message_locator_unique_id"].asUInt64(), id);
  EXPECT_TRUE(locator["message_locator_is_revoked"].asBool());
}

}  // namespace
}  // namespace imsdk_test

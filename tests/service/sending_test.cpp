// Sending: local ids, the pending-send map, results, failure notices, the
// drawing placeholder.
#include <fstream>
#include <set>

#include "imsdk/im_sdk.h"
#include "service/current_conversation.h"
#include "service/local_ids.h"
#include "service/parts/pending_sends.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;

TEST(LocalIds, CountOnRestartAtTwoAfterTheLastIdAndRowKeysStayMarked) {
  const uint32_t cases[][2] = {
      {0, 1}, {41, 42}, {4294967194u, 4294967195u}, {4294967195u, 2}, {4294967295u, 2}};
  for (const auto& c : cases) EXPECT_EQ(service::LocalIdAfter(c[0]), c[1]) << c[0];
  EXPECT_EQ(service::LocalUniqueId(7, 1700000000) >> 62, 1u);  // marked, below 2^63
  EXPECT_NE(service::LocalUniqueId(7, 1700000000), service::LocalUniqueId(7, 1700000001));
  EXPECT_NE(service::LocalUniqueId(7, 1700000000), service::LocalUniqueId(8, 1700000000));
}

class SendingTest : public ServiceTest {
 protected:
  // The local id of the nth send result (3164), 0 when none came.
  uint32_t WaitForResult(size_t nth = 1) {
    if (!PumpUntil([&] { return CountSeen(msg::kTransferStateChanged) >= nth; })) return 0;
    return static_cast<uint32_t>(SeenOf(msg::kTransferStateChanged)[nth - 1].wParam);
  }
  uint32_t StatusOf(uint32_t localId) const {
    std::optional<MessageStru> m = tools->FindPendingSend(localId);
    return m && !m->elems.empty() ? m->elems.front().send_status : 0;
  }
};

TEST_F(SendingTest, TextSendIsShownSentAndStoredOnce) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  ClearSeen();
  ASSERT_TRUE(tools->OnSendTextElem(u"10002", 1, u"hello"));
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRefreshMessageView), 1u);
  EXPECT_EQ(CountSeen(msg::kRefreshMessageView, 2), 1u);
  EXPECT_EQ(CountSeen(msg::kClearComposer), 1u);

  std::vector<Json::Value> calls = log.CallsOf("TIMMsgSendNewMsg");
  ASSERT_EQ(calls.size(), 1u);
  Json::Value message = SdkCallLog::Param(calls[0], "json_msg_param");
  EXPECT_EQ(Keys(message), (std::vector<std::string>{"message_client_time", "message_conv_id",
                                                     "message_conv_type", "message_elem_array",
                                                     "message_is_from_self", "message_platform",
                                                     "message_sender", "message_server_time"}));
  EXPECT_EQ(message["message_sender"].asString(), "10001");
  EXPECT_EQ(message["message_conv_id"].asString(), "10002");
  EXPECT_TRUE(message["message_is_from_self"].asBool());
  EXPECT_EQ(message["message_elem_array"][0]["elem_type"].asInt(), 0);
  EXPECT_EQ(message["message_elem_array"][0]["text_elem_content"].asString(), "hello");

  uint32_t localId = WaitForResult();
  ASSERT_NE(localId, 0u);
  std::optional<MessageStru> sent = tools->FindPendingSend(localId);
  ASSERT_TRUE(sent.has_value());
  EXPECT_EQ(StatusOf(localId), static_cast<uint32_t>(kSent));
  ASSERT_NE(sent->unique_id, 0u);
  std::vector<MessageStru> rows = StoredRows(u"10002");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].unique_id, sent->unique_id);
  EXPECT_EQ(rows[0].elems.at(0).text, u"hello");
  std::vector<MessageStru> listed = tools->TakeNewMessages(u"10002");
  ASSERT_EQ(listed.size(), 1u);
  EXPECT_EQ(listed[0].local_id, localId);

  // The same result again: ignored for the settled id; stored again under
  // the same unique id it adds no row.
  const std::string echo = engine.LastMessageJson("10001", 1, "10002");
  ASSERT_FALSE(echo.empty());
  // An id copy the pending sends did not hand out is never read nor freed.
  uint32_t echoedId = localId;
  CChatTools::TIMMsgSendNewMsgFunc(0, "", echo.c_str(), &echoedId);
  MessageStru again = *sent;
  tools->OnSendMsgUpdateCallback(echo, again, 0);
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kTransferStateChanged), 1u);
  EXPECT_EQ(StoredRows(u"10002").size(), 1u);
}

TEST_F(SendingTest, FailedSendsAreMarkedAndLeaveTheirNoticeAsKindMinusOneRow) {
  const struct {
    const char* name;
    std::function<void(imsdk::EngineControl&)> arrange;
    const char* peer;
    std::u16string notice;
  } cases[] = {
      {"9519", [](imsdk::EngineControl& e) { e.FailNextResult("TIMMsgSendNewMsg", 9519); }, "10002",
       u"消息发送失败，请检查网络连接是否正常。"},
      {"20010", [](imsdk::EngineControl&) {}, "10003",
       u"\"nick10003\"开启了朋友验证，你还不是他（她）的朋友。请先发送朋友验证请求，对方通过验证后"
       u"，才能聊天。"},
      {"20011", [](imsdk::EngineControl& e) { e.RemoveFriend("10002", "10001"); }, "10002",
       u"他（她）已经不是你的朋友。请先发送朋友验证请求，对方通过验证后，才能聊天。"},
      {"other", [](imsdk::EngineControl& e) { e.FailNextResult("TIMMsgSendNewMsg", 10007); },
       "10002", u"发送消息失败。"},
  };
  ASSERT_TRUE(SignIn());
  // The peer of 20010 is no friend: its name comes from the profile cache.
  ASSERT_EQ(tools->RequestUserProfiles({u"10003"}), 0);
  ASSERT_TRUE(PumpUntil([&] { return tools->FindProfile(u"10003").has_value(); }));
  size_t results = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const WString peer = platform::Utf8ToUtf16(c.peer);
    service::SetCurrentConversation(peer, 1);
    tools->TakeNewMessages(peer);
    size_t rowsBefore = StoredRows(peer).size();
    size_t refreshes = CountSeen(msg::kRefreshMessageView, 4);
    c.arrange(engine);
    ASSERT_TRUE(tools->OnSendTextElem(peer, 1, u"are you there"));
    uint32_t localId = WaitForResult(++results);
    ASSERT_NE(localId, 0u);
    EXPECT_EQ(StatusOf(localId), static_cast<uint32_t>(kSendFailed));
    std::vector<MessageStru> rows = StoredRows(peer);
    ASSERT_EQ(rows.size(), rowsBefore + 1);
    EXPECT_EQ(rows[0].elems.at(0).elem_type, kElemLocalNotice);
    EXPECT_EQ(rows[0].elems.at(0).text, c.notice);
    // The view gets the message, then the notice with a newer local id.
    std::vector<MessageStru> listed = tools->TakeNewMessages(peer);
    ASSERT_EQ(listed.size(), 2u);
    EXPECT_EQ(listed[0].local_id, localId);
    EXPECT_EQ(listed[1].elems.at(0).elem_type, kElemLocalNotice);
    EXPECT_EQ(listed[1].elems.at(0).text, c.notice);
    EXPECT_GT(listed[1].local_id, localId);
    DrainNow();
    EXPECT_EQ(CountSeen(msg::kRefreshMessageView, 4), refreshes + 1);
  }
}

TEST_F(SendingTest, ResultForAnUnknownIdDoesNothing) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  uint32_t unknown[] = {123456, 654321};
  CChatTools::TIMMsgSendNewMsgFunc(0, "", "{}", &unknown[0]);
  CChatTools::TIMMsgSendNewMsgFunc(9519, "", "{}", &unknown[1]);
  CChatTools::TIMMsgSendNewMsgFunc(0, "", "{}", nullptr);
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kTransferStateChanged) + CountSeen(msg::kRefreshMessageView), 0u);
  EXPECT_TRUE(StoredRows(u"10002").empty());
  EXPECT_FALSE(tools->FindPendingSend(123456).has_value());
}

TEST_F(SendingTest, RefusedSendPostsNothingAndLeavesNoEntry) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  engine.FailNextCall("TIMMsgSendNewMsg", 1);
  EXPECT_FALSE(tools->OnSendTextElem(u"10002", 1, u"lost"));
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRefreshMessageView) + CountSeen(msg::kClearComposer) +
                CountSeen(msg::kTransferStateChanged),
            0u);
  EXPECT_FALSE(tools->FindPendingSend(tools->NextLocalId() - 1).has_value());
  EXPECT_TRUE(tools->TakeNewMessages(u"10002").empty());
}

TEST_F(SendingTest, DrawingPlaceholderHandsItsIdToTheRealMessage) {
  SdkCallLog log;
  ASSERT_TRUE(SignIn());
  ClearSeen();
  DrawingMsgStru drawing;
  drawing.fileId = 77;
  drawing.fileName = u"plan.dwg";
  drawing.fileRefId = u"ref-77";
  drawing.type = 2;
  uint32_t placeholder = tools->SendFakeMsg(u"10002", 1, drawing);
  ASSERT_NE(placeholder, 0u);
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kRefreshMessageView), 1u);
  EXPECT_TRUE(log.CallsOf("TIMMsgSendNewMsg").empty());
  EXPECT_EQ(StatusOf(placeholder), static_cast<uint32_t>(kSending));
  EXPECT_EQ(tools->FindPendingSend(placeholder)->elems.at(0).drawing.fileName, u"plan.dwg");
  // A result naming the placeholder before it was sent is not its result.
  uint32_t notHandedOut = placeholder;
  CChatTools::TIMMsgSendNewMsgFunc(0, "", "{}", &notHandedOut);
  EXPECT_EQ(StatusOf(placeholder), static_cast<uint32_t>(kSending));

  ASSERT_TRUE(tools->OnSenddrawingFileElem(u"10002", 1, drawing, placeholder));
  EXPECT_EQ(WaitForResult(), placeholder);
  EXPECT_EQ(StatusOf(placeholder), static_cast<uint32_t>(kSent));
  EXPECT_EQ(tools->TakeNewMessages(u"10002").size(), 1u);  // one item: the placeholder

  std::vector<Json::Value> calls = log.CallsOf("TIMMsgSendNewMsg");
  ASSERT_EQ(calls.size(), 1u);
  Json::Value elem = SdkCallLog::Param(calls[0], "json_msg_param")["message_elem_array"][0];
  EXPECT_EQ(elem["elem_type"].asInt(), 3);
  Json::Value payload = ParseJsonText(elem["custom_elem_data"].asString());
  EXPECT_EQ(payload["msgType"].asUInt(), 1u);
  EXPECT_EQ(
      Keys(payload["data"]),
      (std::vector<std::string>{"fileId", "fileMd5", "fileName", "filePath", "fileRefId",
                                "fileSize", "fileType", "fromUserId", "subType", "ts", "type"}));
  EXPECT_EQ(payload["data"]["subType"].asUInt(), 1u);
  EXPECT_EQ(payload["data"]["type"].asUInt(), 2u);
  EXPECT_EQ(payload["data"]["fromUserId"].asString(), "10001");
  std::vector<MessageStru> rows = StoredRows(u"10002");
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].elems.at(0).drawing.fileRefId, u"ref-77");

  // An unknown placeholder id: the drawing is sent under a new id.
  ASSERT_TRUE(tools->OnSenddrawingFileElem(u"10002", 1, drawing, 999999));
  uint32_t fresh = WaitForResult(2);
  EXPECT_NE(fresh, 999999u);
  EXPECT_NE(fresh, placeholder);
}

TEST_F(SendingTest, FileIsSentAndItsUploadProgressReachesItsItem) {
  ASSERT_TRUE(SignIn());
  std::string path = testing::TempDir() + "service_send_upload.bin";
  std::ofstream(path, std::ios::binary) << std::string(300000, 'x');
  ClearSeen();
  ASSERT_TRUE(tools->OnSendFileElem(u"10002", 1, platform::Utf8ToUtf16(path), u"u.bin", 300000));
  // The engine's two progress reports, then the result: each names the send.
  uint32_t localId = WaitForResult(3);
  EXPECT_EQ(StatusOf(localId), static_cast<uint32_t>(kSent));
  EXPECT_EQ(CountSeen(msg::kTransferStateChanged, localId), 3u);
  EXPECT_FALSE(tools->FindUpload(localId));  // settled: nothing in flight
}

// The SDK's report carries no local id: the send is found by conversation
// and file, and only while it is sending.
TEST(PendingSendsUploads, AReportNamesTheSendingMessageWithItsFile) {
  service::PendingSends sends;
  auto fileMessage = [](const WString& conv, const WString& file) {
    MessageStru m;
    m.conv_id = conv;
    ElemStru e;
    e.elem_type = kElemFile;
    e.file_path = file;
    m.elems.push_back(e);
    return m;
  };
  MessageStru first = fileMessage(u"10002", u"/d/a.pdf");
  MessageStru second = fileMessage(u"10003", u"/d/a.pdf");
  sends.Register(first);
  sends.Register(second);
  EXPECT_EQ(sends.RecordUpload(fileMessage(u"10003", u"/d/a.pdf"), 0, {5, 10}), second.local_id);
  EXPECT_EQ(sends.Upload(second.local_id), (UploadProgress{5, 10}));
  EXPECT_FALSE(sends.Upload(first.local_id));
  EXPECT_FALSE(sends.RecordUpload(fileMessage(u"10002", u"/d/b.pdf"), 0, {1, 2}));
  EXPECT_FALSE(sends.RecordUpload(fileMessage(u"10002", u"/d/a.pdf"), 1, {1, 2}));
  sends.Settle(second.local_id, 0);
  EXPECT_FALSE(sends.Upload(second.local_id));
  EXPECT_FALSE(sends.RecordUpload(fileMessage(u"10003", u"/d/a.pdf"), 0, {10, 10}));
}

// Results settle on the SDK's thread while the window thread sends more.
TEST_F(SendingTest, ManySendsGetDistinctIdsAndOneRowEach) {
  ASSERT_TRUE(SignIn());
  ClearSeen();
  constexpr size_t kSends = 40;
  for (size_t i = 0; i < kSends; ++i) {
    ASSERT_TRUE(
        tools->OnSendTextElem(u"10002", 1, u"n" + platform::Utf8ToUtf16(std::to_string(i))));
    DrainNow();
  }
  ASSERT_NE(WaitForResult(kSends), 0u);
  std::set<platform::WPARAM> ids;
  for (const Seen& seen : SeenOf(msg::kTransferStateChanged)) ids.insert(seen.wParam);
  EXPECT_EQ(ids.size(), kSends);
  EXPECT_EQ(StoredRows(u"10002").size(), kSends);
}

}  // namespace
}  // namespace service_test

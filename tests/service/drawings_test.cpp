// The drawing controller end to end: the local host (its cloud space a real
// folder, its groups following the engine's), the upload worker, the
// embedded engine and the service between them.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

#include "host/local/engine_group_link.h"
#include "host/local/local_host.h"
#include "service/drawings/drawing_opening.h"
#include "service/drawings/drawing_upload.h"
#include "service/drawings/file_md5.h"
#include "service/drawings/shared_chat.h"
#include "service/sending_json.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace fs = std::filesystem;
namespace msg = platform::msg;
using service::drawings::DrawingOpenStep;
using service::drawings::DrawingSendStep;
using service::drawings::DrawingUpload;
using service::drawings::SharedChat;
using service::drawings::SharedChatStep;

TEST(FileMd5Test, KnownDigests) {
  using service::drawings::Md5Hex;
  EXPECT_EQ(Md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(Md5Hex("abc"), "900150983cd24fb0d6963f7d28e17f72");
  // Over one block, and the padding falling into a second block.
  EXPECT_EQ(Md5Hex(std::string(1000, 'a')), "cabe45dcc9ae5b66ba86600cca6b8ba8");
  EXPECT_EQ(Md5Hex(std::string(56, 'x')), "668a72d5ba17f08e62dabcafad6db14b");
  EXPECT_FALSE(service::drawings::FileMd5(u"/nonexistent/plan.dwg"));
}

class DrawingsTest : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    fs::remove_all(root_);
    fs::create_directories(root_ / "disk");
    host_.Install();
    for (int32_t id : {10001, 10002, 10003}) {
      host::local::LocalAccount account;
      account.id = id;
      host_.AddAccount(account);
    }
    host_.SignIn(10001);
    ASSERT_EQ(engine.CreateGroup("10002", "图纸评审组", {"10001"}, "gd"), "gd");
    ASSERT_TRUE(SignIn());
    ASSERT_TRUE(PumpUntil([&] {
      auto group = tools->FindGroup(u"gd");
      return group && group->cloud_group_id > 0;
    }));
    upload_.emplace(*tools);
    ClearSeen();
  }
  void TearDown() override {
    link_.reset();
    host_.Uninstall();
    ServiceTest::TearDown();
  }
  WString WriteDrawing(const std::string& name, const std::string& content) {
    const fs::path path = root_ / "disk" / name;
    std::ofstream(path, std::ios::binary) << content;
    return platform::Utf8ToUtf16(path.string());
  }
  // The worker's 1025, handed to the controller as the dialog does.
  bool FinishUpload() {
    std::optional<platform::WindowMessage> done = dialog_.WaitFor(std::chrono::seconds(5));
    if (!done || done->msg != msg::kUploadFinished || done->lParam != 0) return false;
    return upload_->Finish(done->wParam == 1);
  }
  uint32_t StatusOf(uint32_t localId) const {
    std::optional<MessageStru> m = tools->FindPendingSend(localId);
    return m && !m->elems.empty() ? m->elems.front().send_status : 0;
  }
  size_t Calls(const std::string& name) const {
    std::vector<std::string> names = host_.CallNames();
    return static_cast<size_t>(std::count(names.begin(), names.end(), name));
  }

  fs::path root_ = fs::path(testing::TempDir()) / "service_drawings";
  host::local::LocalHost host_{(root_ / "space").string()};
  std::unique_ptr<host::local::EngineGroupLink> link_ =
      std::make_unique<host::local::EngineGroupLink>(host_);
  platform::QueuedWindow dialog_;
  std::optional<DrawingUpload> upload_;
};

TEST_F(DrawingsTest, GroupDrawingIsUploadedOnceAndItsPlaceholderBecomesTheMessage) {
  SdkCallLog log;
  const uint64_t before = service::NowMilliseconds();
  const WString plan = WriteDrawing("一层平面图.DWG", "AC1032 plan");
  ASSERT_EQ(upload_->Send(u"gd", 2, plan, -1, dialog_.handle()), DrawingSendStep::kUploading);
  const uint32_t placeholder = upload_->PlaceholderId();
  EXPECT_EQ(StatusOf(placeholder), static_cast<uint32_t>(kSending));
  EXPECT_EQ(host_.FeatureUses(), std::vector<WString>{u"IM-SendDrawing"});
  // Both checks ran, in order, before the upload.
  std::vector<std::string> names = host_.CallNames();
  auto at = [&](const char* name) { return std::find(names.begin(), names.end(), name); };
  EXPECT_LT(at("QuerySpaceFile"), at("QuerySpaceFileByName"));
  EXPECT_TRUE(log.CallsOf("TIMMsgSendNewMsg").empty());

  ASSERT_TRUE(FinishUpload());
  ASSERT_TRUE(
      PumpUntil([&] { return StatusOf(placeholder) == kSent && StoredRows(u"gd").size() == 1; }));
  EXPECT_EQ(Calls("UploadSpaceFile"), 1u);
  EXPECT_EQ(tools->TakeNewMessages(u"gd").size(), 1u);  // one item: the placeholder
  ASSERT_EQ(StoredRows(u"gd").size(), 1u);
  const DrawingMsgStru stored = StoredRows(u"gd")[0].elems.at(0).drawing;
  EXPECT_EQ(stored.msgType, 1u);
  EXPECT_EQ(stored.fileName, u"一层平面图.DWG");
  EXPECT_EQ(stored.fileType, u"DWG");
  EXPECT_EQ(stored.fileSize, 11);
  EXPECT_EQ(platform::Utf16ToUtf8(stored.fileMd5), service::drawings::Md5Hex("AC1032 plan"));
  // The id and the reference the host gave the stored drawing, and the send's time.
  const std::optional<host::local::SpaceDrawing> inSpace =
      host_.SpaceDrawingNamed(u"一层平面图.DWG");
  ASSERT_TRUE(inSpace);
  EXPECT_EQ(stored.fileId, inSpace->drawingId);
  EXPECT_EQ(stored.fileRefId, host::local::RefOf(*inSpace));
  EXPECT_GE(stored.ts, before);
  EXPECT_LE(stored.ts, service::NowMilliseconds());
  EXPECT_EQ(stored.type, 2u);

  // The same drawing again: found in the space, sent at once, not uploaded.
  host_.ClearCalls();
  ASSERT_EQ(upload_->Send(u"gd", 2, plan, -1, dialog_.handle()), DrawingSendStep::kSentFromSpace);
  EXPECT_EQ(Calls("UploadSpaceFile"), 0u);
  EXPECT_EQ(dialog_.Pending(), 0u);
  ASSERT_EQ(log.CallsOf("TIMMsgSendNewMsg").size(), 2u);
  EXPECT_EQ(host_.FeatureUses().size(), 1u);
  Json::Value again;
  ASSERT_TRUE(Json::Reader().parse(
      SdkCallLog::Param(log.CallsOf("TIMMsgSendNewMsg")[1],
                        "json_msg_param")["message_elem_array"][0]["custom_elem_data"]
          .asString(),
      again));
  EXPECT_EQ(again["data"]["fileId"].asInt(), inSpace->drawingId);
  EXPECT_EQ(platform::Utf8ToUtf16(again["data"]["fileRefId"].asString()), stored.fileRefId);
}

TEST_F(DrawingsTest, FailedUploadMarksThePlaceholderFailedAndSendsNothing) {
  SdkCallLog log;
  host_.FailOperation("UploadSpaceFile");
  ASSERT_EQ(upload_->Send(u"gd", 2, WriteDrawing("a.dxf", "0\nSECTION"), -1, dialog_.handle()),
            DrawingSendStep::kUploading);
  const uint32_t placeholder = upload_->PlaceholderId();
  EXPECT_FALSE(FinishUpload());
  EXPECT_EQ(StatusOf(placeholder), static_cast<uint32_t>(kSendFailed));
  EXPECT_FALSE(upload_->Uploading());
  DrainNow();
  EXPECT_EQ(CountSeen(msg::kTransferStateChanged, placeholder), 1u);
  EXPECT_TRUE(log.CallsOf("TIMMsgSendNewMsg").empty());
  EXPECT_TRUE(StoredRows(u"gd").empty());
  // A failed placeholder is not taken over by a later send.
  EXPECT_FALSE(tools->FailPlaceholder(placeholder));
}

TEST_F(DrawingsTest, WhatIsNotSentThroughTheSpace) {
  SdkCallLog log;
  // One-to-one: a file message, no space, no upload, no feature event.
  const WString plan = WriteDrawing("plan.dwt", "template");
  EXPECT_EQ(upload_->Send(u"10002", 1, plan, -1, dialog_.handle()), DrawingSendStep::kSentAsFile);
  ASSERT_EQ(log.CallsOf("TIMMsgSendNewMsg").size(), 1u);
  Json::Value elem = SdkCallLog::Param(log.CallsOf("TIMMsgSendNewMsg")[0],
                                       "json_msg_param")["message_elem_array"][0];
  EXPECT_EQ(elem["elem_type"].asInt(), 4);
  EXPECT_EQ(elem["file_elem_file_name"].asString(), "plan.dwt");
  // Not a drawing, a missing file, a signed-out host.
  EXPECT_EQ(upload_->Send(u"gd", 2, WriteDrawing("notes.txt", "x"), -1, dialog_.handle()),
            DrawingSendStep::kRefused);
  EXPECT_EQ(upload_->Send(u"gd", 2, plan + u".dwg", -1, dialog_.handle()),
            DrawingSendStep::kRefused);
  host_.SignOut();
  EXPECT_EQ(upload_->Send(u"gd", 2, WriteDrawing("b.dws", "s"), -1, dialog_.handle()),
            DrawingSendStep::kNoSpace);
  EXPECT_EQ(log.CallsOf("TIMMsgSendNewMsg").size(), 1u);
  EXPECT_TRUE(host_.FeatureUses().empty());
}

TEST_F(DrawingsTest, SharedChatJoinsARunningSessionOrTellsWhyNot) {
  const int32_t groupId = host_.FindGroup(u"gd")->cloudGroupId;
  SharedChat shared(*tools, window);
  // A group without a session: the user chooses a drawing of the space.
  EXPECT_EQ(shared.Start(u"gd", 2, dialog_.handle()), SharedChatStep::kChooseDrawing);
  EXPECT_EQ(host_.FeatureUses(), std::vector<WString>{u"IM-ShareChat"});

  // Full: the limit is told.
  SharedSessionInfo running;
  running.groupId = groupId;
  running.drawingId = 4;
  running.sessionText = u"gd#4";
  running.maxParticipants = 2;
  host_.SetSessionOf(groupId, running);
  host_.SetSessionMembers(groupId, {10002, 10003});
  EXPECT_EQ(shared.Start(u"gd", 2, dialog_.handle()), SharedChatStep::kFull);
  ASSERT_FALSE(window.Boxes().empty());
  EXPECT_EQ(window.Boxes().back().text, u"人数超限，最多可2人同时进行共享聊图。");

  // Room again: joined, and the host opens the drawing.
  host_.SetSessionMembers(groupId, {10002});
  EXPECT_EQ(shared.Start(u"gd", 2, dialog_.handle()), SharedChatStep::kEntered);
  EXPECT_EQ(host_.SessionMembers(groupId), (std::vector<int32_t>{10002, 10001}));
  EXPECT_EQ(Calls("EnterSharedDrawing"), 1u);
  // Asked again while in it: the layout only, the session is not joined twice.
  EXPECT_EQ(shared.Start(u"gd", 2, dialog_.handle()), SharedChatStep::kEntered);
  EXPECT_EQ(host_.SessionMembers(groupId), (std::vector<int32_t>{10002, 10001}));
  EXPECT_EQ(Calls("JoinSharedSession"), 1u);
  EXPECT_EQ(Calls("EnterSharedDrawing"), 1u);

  // Opening the drawing fails: the session is given back, and the box says so.
  host_.ClearSharedSession();
  host_.SetSessionMembers(groupId, {10002});
  host_.FailOperation("EnterSharedDrawing");
  const size_t boxes = window.Boxes().size();
  EXPECT_EQ(shared.Enter(u"gd", {groupId, 4, u"", u"gd#4"}, dialog_.handle()),
            SharedChatStep::kEnterFailed);
  EXPECT_EQ(host_.SessionMembers(groupId), std::vector<int32_t>{10002});
  ASSERT_EQ(window.Boxes(boxes).size(), 1u);
  EXPECT_EQ(window.Boxes(boxes)[0].title, u"进入共享聊图失败");
  EXPECT_EQ(window.Boxes(boxes)[0].text, u"进入共享聊图失败。");
  host_.FailOperation("EnterSharedDrawing", false);

  // The state query fails.
  host_.FailOperation("QuerySharedSessionState");
  EXPECT_EQ(shared.Start(u"10002", 1, dialog_.handle()), SharedChatStep::kQueryFailed);
  EXPECT_EQ(window.Boxes().back().text, u"查询自己和对方是否进入了聊图失败!!!");
}

TEST_F(DrawingsTest, ReceivedDrawingIsFetchedOnceAndItsRowPointsAtTheCopy) {
  // 王工 uploads a drawing to the group's space and sends its message.
  const int32_t groupId = host_.FindGroup(u"gd")->cloudGroupId;
  host_.SignIn(10002);
  SpaceFileRef stored;
  ASSERT_TRUE(HostSystem::instance()->GetCloudService()->UploadSpaceFile(
      0, WriteDrawing("stairs.dwg", "stairs v1").c_str(), u"description", 0, stored, 0, groupId,
      0));
  const WString ref = stored.drawingRef;
  host_.SignIn(10001);
  DrawingMsgStru drawing;
  drawing.fileName = u"stairs.dwg";
  drawing.fileRefId = ref;
  drawing.filePath = u"/home/wang/stairs.dwg";
  const std::string payload =
      service::CompactText(service::DrawingFilePayload(drawing, u"10002", 1700000000000));
  ASSERT_TRUE(HandlePushed(engine.SendCustom("10002", 2, "gd", payload)));
  std::vector<MessageStru> rows = StoredRows(u"gd");
  ASSERT_EQ(rows.size(), 1u);
  MessageStru message = rows[0];

  const WString downloads = platform::Utf8ToUtf16((root_ / "recv").string());
  fs::create_directories(root_ / "recv");
  EXPECT_EQ(service::drawings::OpenDrawingMessage(message, downloads, window),
            DrawingOpenStep::kOpened);
  const WString local = downloads + u"/stairs.dwg";
  EXPECT_EQ(StoredRows(u"gd")[0].elems.at(0).drawing.filePath, local);
  EXPECT_EQ(message.elems.at(0).drawing.filePath, local);
  EXPECT_TRUE(fs::exists(root_ / "recv" / "stairs.dwg"));
  // Opened again: the copy is used, nothing fetched.
  host_.ClearCalls();
  EXPECT_EQ(service::drawings::OpenDrawingMessage(message, downloads, window),
            DrawingOpenStep::kOpened);
  EXPECT_EQ(Calls("DownloadPicture"), 0u);

  // Removed from the space: the box says so, nothing opened.
  fs::remove_all(root_ / "space");
  host_.ClearCalls();
  EXPECT_EQ(service::drawings::OpenDrawingMessage(message, downloads, window),
            DrawingOpenStep::kGone);
  EXPECT_EQ(window.Boxes().back().title, u"错误");
  EXPECT_EQ(window.Boxes().back().text, u"图纸不存在或已被删除!");
  EXPECT_EQ(Calls("OpenDrawingFile"), 0u);
}

}  // namespace
}  // namespace service_test

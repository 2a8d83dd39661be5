// Element downloads and the transfer-state notice.
#include <chrono>
#include <fstream>

#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "platform/module_workers.h"
#include "records/download_param.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;
using Clock = std::chrono::steady_clock;
using DownloadsTest = ServiceTest;

const char* kResult =
    R"({"msg_download_elem_result_current_size":5,"msg_download_elem_result_total_size":5})";

void DownloadResult(int32_t code, const char* json, uintptr_t key) {
  CChatTools::TIMMsgDownloadFileElemToPathFunc(code, "", json, reinterpret_cast<void*>(key));
}

// Files are announced at once; pictures and videos 50 ms later, once the
// file has settled.
TEST_F(DownloadsTest, ResultIsAnnouncedAtOnceForFilesAndLaterForPictures) {
  for (int32_t kind : {kElemFile, kElemImage, kElemVideo}) {
    SCOPED_TRACE(kind);
    const uint32_t key = 100 + kind;
    WString param = platform::Utf8ToUtf16(records::BuildDownloadParam(0, kind, u"id", 0, u""));
    tools->DownloadMessageElem(param, u"/nowhere/f", key);  // refused: not started
    Clock::time_point called = Clock::now();
    DownloadResult(0, kResult, key);
    std::optional<platform::WindowMessage> posted = window.queue.Take();
    if (kind != kElemFile) {
      EXPECT_FALSE(posted.has_value());
      posted = window.queue.WaitFor(std::chrono::seconds(5));
      EXPECT_GE(Clock::now() - called, std::chrono::milliseconds(50));
    }
    ASSERT_TRUE(posted.has_value());
    EXPECT_EQ(posted->msg, msg::kTransferStateChanged);
    EXPECT_EQ(posted->wParam, key);
    std::optional<DownloadState> state = tools->GetDownloadState(key);
    ASSERT_TRUE(state.has_value());
    EXPECT_EQ(state->downloaded, 1);
    EXPECT_EQ(state->current_size, 5u);
    EXPECT_EQ(state->total_size, 5u);
  }
  EXPECT_TRUE(traces.Contains("File download failed! ret:"));
  EXPECT_EQ(tools->GetDownloadState(100 + kElemVideo)->secondary_status, 1u);
}

// Unloading stops the module's workers: a pending picture notice ends at
// once without its post, so no module thread runs after the library is gone.
TEST_F(DownloadsTest, StoppingTheModuleEndsAPendingPictureNotice) {
  const uint32_t key = 300;
  tools->DownloadMessageElem(
      platform::Utf8ToUtf16(records::BuildDownloadParam(0, kElemImage, u"id", 0, u"")), u"/f", key);
  DownloadResult(0, kResult, key);
  platform::ModuleWorkers::Instance().StopAll();
  EXPECT_TRUE(window.queue.TakeAll().empty());
}

TEST_F(DownloadsTest, FailedOrUnknownResultsChangeNothing) {
  tools->DownloadMessageElem(
      platform::Utf8ToUtf16(records::BuildDownloadParam(0, kElemFile, u"id", 0, u"")), u"/f", 8);
  DownloadResult(TIM_ERR_FILE_NOT_FOUND, "", 8);
  DownloadResult(0, kResult, 9);
  DownloadResult(0, "not json", 8);
  EXPECT_EQ(window.queue.TakeAll().size(), 1u);  // only the last, whose sizes stay unknown
  EXPECT_EQ(tools->GetDownloadState(8)->total_size, 0u);
  EXPECT_FALSE(tools->GetDownloadState(9).has_value());
}

TEST_F(DownloadsTest, ReceivedFileDownloadsToTheGivenPath) {
  std::string source = testing::TempDir() + "service_download_source.txt";
  std::ofstream(source, std::ios::binary) << "drawing data";
  ASSERT_TRUE(SignIn());
  ASSERT_TRUE(HandlePushed(engine.SendFile("10002", 1, "10001", source)));
  std::vector<MessageStru> fresh = tools->TakeNewMessages(u"10002");
  ASSERT_EQ(fresh.size(), 1u);
  ASSERT_EQ(fresh[0].elems.at(0).elem_type, kElemFile);

  WString target =
      platform::JoinPath(platform::DataFolders::Instance().GetDownloadPath(), u"received.txt");
  ClearSeen();
  tools->DownloadMessageElem(platform::Utf8ToUtf16(fresh[0].elems[0].download_param), target, 42);
  ASSERT_TRUE(PumpUntil([this] { return CountSeen(msg::kTransferStateChanged, 42) == 1; }));
  std::ifstream in(platform::ToNativePath(target), std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(content, "drawing data");
  EXPECT_EQ(tools->GetDownloadState(42)->total_size, content.size());
}

}  // namespace
}  // namespace service_test

// Element downloads and the transfer-state notice.
#include <chrono>
#include <filesystem>
#include <fstream>

#include "imsdk/im_sdk.h"
#include "platform/data_folders.h"
#include "platform/folders.h"
#include "records/download_param.h"
#include "tests/service/service_fixture.h"

namespace service_test {
namespace {

namespace msg = platform::msg;
using Clock = std::chrono::steady_clock;

using DownloadsTest = ServiceTest;

const char* kResult =
    R"({"msg_download_elem_result_current_size":5,"msg_download_elem_result_total_size":5})";

WString ParamOfKind(int32_t kind) {
  return platform::Utf8ToUtf16(records::BuildDownloadParam(0, kind, u"id", 0, u""));
}

TEST_F(DownloadsTest, FileResultIsAnnouncedAtOnce) {
  tools->DownloadMessageElem(ParamOfKind(kElemFile), u"/nowhere/f", 7);  // refused: not started
  EXPECT_TRUE(traces.Contains("File download failed! ret:"));
  CChatTools::TIMMsgDownloadFileElemToPathFunc(0, "", kResult, reinterpret_cast<void*>(7));
  std::vector<platform::WindowMessage> posted = window.queue.TakeAll();
  ASSERT_EQ(posted.size(), 1u);
  EXPECT_EQ(posted[0].msg, msg::kTransferStateChanged);
  EXPECT_EQ(posted[0].wParam, 7u);
  std::optional<DownloadState> state = tools->GetDownloadState(7);
  ASSERT_TRUE(state.has_value());
  EXPECT_EQ(state->downloaded, 1);
  EXPECT_EQ(state->current_size, 5u);
  EXPECT_EQ(state->total_size, 5u);
}

TEST_F(DownloadsTest, PictureResultIsAnnouncedAfterTheFileSettled) {
  for (int32_t kind : {kElemImage, kElemVideo}) {
    SCOPED_TRACE(kind);
    uint32_t key = 100 + kind;
    tools->DownloadMessageElem(ParamOfKind(kind), u"/nowhere/p", key);
    Clock::time_point called = Clock::now();
    CChatTools::TIMMsgDownloadFileElemToPathFunc(0, "", kResult,
                                                 reinterpret_cast<void*>(uintptr_t{key}));
    EXPECT_EQ(window.queue.Pending(), 0u);
    std::optional<platform::WindowMessage> later = window.queue.WaitFor(std::chrono::seconds(5));
    ASSERT_TRUE(later.has_value());
    EXPECT_GE(Clock::now() - called, std::chrono::milliseconds(50));
    EXPECT_EQ(later->msg, msg::kTransferStateChanged);
    EXPECT_EQ(later->wParam, key);
  }
  EXPECT_EQ(tools->GetDownloadState(100 + kElemVideo)->secondary_status, 1u);
}

TEST_F(DownloadsTest, FailedOrUnknownResultsChangeNothing) {
  tools->DownloadMessageElem(ParamOfKind(kElemFile), u"/nowhere/f", 8);
  CChatTools::TIMMsgDownloadFileElemToPathFunc(TIM_ERR_FILE_NOT_FOUND, "gone", "",
                                               reinterpret_cast<void*>(8));
  CChatTools::TIMMsgDownloadFileElemToPathFunc(0, "", kResult, reinterpret_cast<void*>(9));
  CChatTools::TIMMsgDownloadFileElemToPathFunc(0, "", "not json", reinterpret_cast<void*>(8));
  std::vector<platform::WindowMessage> posted = window.queue.TakeAll();
  ASSERT_EQ(posted.size(), 1u);  // only the last, whose sizes stay unknown
  EXPECT_EQ(tools->GetDownloadState(8)->total_size, 0u);
  EXPECT_FALSE(tools->GetDownloadState(9).has_value());
}

TEST_F(DownloadsTest, ReceivedFileDownloadsToTheGivenPath) {
  std::string source = testing::TempDir() + "service_download_source.txt";
  {
    std::ofstream out(source, std::ios::binary);
    out << "drawing data";
  }
  ASSERT_TRUE(SignIn());
  ASSERT_EQ(engine.SendFile("10002", 1, "10001", source), 0);
  ASSERT_TRUE(PumpUntilEvent(kSdkEventNewMessages));
  DrainNow();
  std::vector<MessageStru> fresh = tools->TakeNewMessages(u"10002");
  ASSERT_EQ(fresh.size(), 1u);
  const ElemStru& file = fresh[0].elems.at(0);
  ASSERT_EQ(file.elem_type, kElemFile);

  WString target =
      platform::JoinPath(platform::DataFolders::Instance().GetDownloadPath(), u"received.txt");
  ClearSeen();
  tools->DownloadMessageElem(platform::Utf8ToUtf16(file.download_param), target, 42);
  ASSERT_TRUE(PumpUntil([this] { return CountSeen(msg::kTransferStateChanged) == 1; }));
  EXPECT_EQ(SeenOf(msg::kTransferStateChanged)[0].wParam, 42u);
  std::ifstream in(platform::ToNativePath(target), std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(content, "drawing data");
  EXPECT_EQ(tools->GetDownloadState(42)->total_size, content.size());
}

}  // namespace
}  // namespace service_test

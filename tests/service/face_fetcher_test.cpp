// Conversation pictures are fetched off the window's thread, each once, and
// every window that asked is told which picture arrived.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/local/local_host.h"
#include "platform/module_workers.h"
#include "service/face_downloads.h"
#include "service/panes/face_fetcher.h"
#include "service/posting.h"

namespace {

namespace fs = std::filesystem;
constexpr service::SessionStamp kSession = 7;

TEST(FaceFetcher, FetchesEachPictureOnceAndAnnouncesItsConversation) {
  fs::path folder = fs::path(testing::TempDir()) / ("faces-" + std::to_string(getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder);
  fs::path source = folder / "source.png";
  std::ofstream(source) << "png";
  host::local::LocalHost host((folder / "space").string());
  host.Install();
  platform::QueuedWindow window;
  {
    service::FaceFetcher fetcher(
        [](void* w) { return static_cast<platform::QueuedWindow*>(w)->handle(); }, &window);
    WString url = platform::Utf8ToUtf16(source.string());
    WString path = platform::Utf8ToUtf16((folder / "10002.png").string());
    fetcher.Fetch(url, path, u"10002", kSession);
    fetcher.Fetch(url, path, u"10002", kSession);  // already queued: once
    fetcher.Fetch(u"/no/such/picture.png", platform::Utf8ToUtf16((folder / "x.png").string()),
                  u"10003", kSession);
    fetcher.WaitIdle();
    EXPECT_TRUE(fs::exists(folder / "10002.png"));
    EXPECT_FALSE(fs::exists(folder / "x.png"));
  }
  std::vector<platform::WindowMessage> posted = window.TakeAll();
  ASSERT_EQ(posted.size(), 1u);  // the failed one keeps the default picture quietly
  EXPECT_EQ(posted[0].msg, platform::msg::kConversationLogoChanged);
  auto arrived = service::AdoptPosted<platform::msg::kConversationLogoChanged>(posted[0].wParam);
  EXPECT_EQ(arrived->value, u"10002");
  EXPECT_EQ(arrived->session, kSession);  // the window drops it once that session ended
  host.Uninstall();
}

// Two windows ask for one picture while it is on its way: one download, and
// both are told when it has arrived.
TEST(FaceDownloads, EveryWindowThatAskedIsToldOfOneDownload) {
  fs::path folder = fs::path(testing::TempDir()) / ("face-downloads-" + std::to_string(getpid()));
  fs::remove_all(folder);
  fs::create_directories(folder / "face");
  std::ofstream(folder / "source.png") << "png";
  host::local::LocalHost host((folder / "space").string());
  host.Install();
  host.SetDownloadDelay(std::chrono::milliseconds(200));  // still on its way at the second ask
  platform::QueuedWindow dialog, chat;
  service::StampedFolders session;
  session.stamp = kSession;
  session.folders.face = platform::Utf8ToUtf16((folder / "face").string());
  const WString url = platform::Utf8ToUtf16((folder / "source.png").string());
  service::FaceDownloads downloads;
  EXPECT_EQ(downloads.CachedOrFetch(session, url, u"default", u"10004", dialog.handle()),
            u"default");
  EXPECT_EQ(downloads.CachedOrFetch(session, url, u"default", u"10004", chat.handle()), u"default");
  EXPECT_EQ(downloads.CachedOrFetch(session, url, u"default", u"10004", chat.handle()), u"default");
  platform::ModuleWorkers::Instance().WaitIdle();
  const auto calls = host.CallNames();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "DownloadPicture"), 1);
  for (platform::QueuedWindow* window : {&dialog, &chat}) {
    std::vector<platform::WindowMessage> posted = window->TakeAll();
    ASSERT_EQ(posted.size(), 1u);
    EXPECT_EQ(
        service::AdoptPosted<platform::msg::kConversationLogoChanged>(posted[0].wParam)->value,
        u"10004");
  }
  EXPECT_NE(downloads.CachedOrFetch(session, url, u"default", u"10004", chat.handle()), u"default");
  host.Uninstall();
}

}  // namespace

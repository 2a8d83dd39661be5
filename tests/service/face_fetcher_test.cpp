// Conversation pictures are fetched off the window's thread, each once, and
// the window is told which conversation's picture arrived.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/local/local_host.h"
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

}  // namespace

#pragma once
// A prompt that records what the user would have seen ("title: text", a
// question marked "? "), and a fixture with a local host installed.

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "host/local/local_host.h"
#include "host/user_prompt.h"
#include "platform/strings.h"
#include "platform/trace.h"

namespace host::testing {

using Strings = std::vector<std::string>;

class RecordingPrompt : public UserPrompt {
 public:
  void ShowMessage(const WString& title, const WString& text) override {
    shown.push_back(platform::Utf16ToUtf8(title + u": " + text));
  }
  bool Confirm(const WString& title, const WString& text) override {
    shown.push_back(platform::Utf16ToUtf8(u"? " + title + u": " + text));
    return answer;
  }
  bool answer = true;
  Strings shown;
};

// Accounts 1 (the user, "Ann"), 2 ("Bob", a friend), 3 ("Cai"), 4 ("Dee", no
// chat identity yet); group "group_1001" owned by 1 with 2 and 3 in it.
class LocalHostTest : public ::testing::Test {
 protected:
  static constexpr int32_t kSelf = 1;

  LocalHostTest() : space_(ScratchFolder()), host_((space_ / "space").string()) {
    host_.AddAccount({1, u"ann@example.com", u"13800000001", u"Ann", u"", true});
    host_.AddAccount({2, u"bob@example.com", u"13800000002", u"Bob", u"", true});
    host_.AddAccount({3, u"cai@example.com", u"13800000003", u"Cai", u"", true});
    host_.AddAccount({4, u"dee@example.com", u"13800000004", u"Dee", u"", false});
    host_.MakeFriends(1, 2);
    host_.OnGroupCreated(u"group_1001", u"Team", u"1", {u"1", u"2", u"3"});
    host_.SignIn(kSelf);
    host_.Install();
  }
  static std::filesystem::path ScratchFolder() {
    static int next = 0;
    const char* base = std::getenv("IM_COMMON_DOCS_DIR");
    const auto folder = std::filesystem::path(base ? base : "/tmp") / "host" /
                        (std::to_string(getpid()) + "-" + std::to_string(++next));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
  }

  std::filesystem::path space_;
  local::LocalHost host_;
  RecordingPrompt prompt_;
  platform::ScopedTraceCapture trace_;
};

}  // namespace host::testing

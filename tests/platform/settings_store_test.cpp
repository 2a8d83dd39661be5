#include "platform/settings_store.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace platform;
namespace fs = std::filesystem;

namespace {

class SettingsStoreTest : public testing::Test {
 protected:
  void SetUp() override { fs::remove_all(root_); }
  void WriteRaw(const std::string& text) {
    fs::create_directories(fs::path(store_.FileFor(kSettingsKey())).parent_path());
    std::ofstream(store_.FileFor(kSettingsKey()), std::ios::binary) << text;
  }
  static WString kSettingsKey() { return u"Software\\Ostrel"; }

  const std::string root_ = testing::TempDir() + "/settings-" +
                            testing::UnitTest::GetInstance()->current_test_info()->name();
  FileSettingsStore store_{root_};
};

TEST_F(SettingsStoreTest, WrittenValueReadsBackAndKeepsOthers) {
  ASSERT_TRUE(store_.WriteString(kSettingsKey(), u"DownloadPath", u"/data/下载"));
  ASSERT_TRUE(store_.WriteString(kSettingsKey(), u"Other", u"x"));
  EXPECT_EQ(store_.ReadString(kSettingsKey(), u"DownloadPath"), WString(u"/data/下载"));
  EXPECT_EQ(store_.ReadString(kSettingsKey(), u"Other"), WString(u"x"));
  EXPECT_EQ(store_.FileFor(kSettingsKey()), root_ + "/Software/Ostrel.json");
  // No temporary files are left beside the store.
  EXPECT_EQ(std::distance(fs::directory_iterator(root_ + "/Software"), {}), 1);
}

// A missing, corrupt or wrong-typed store reads as no value; writing repairs it.
TEST_F(SettingsStoreTest, CorruptStoreReadsAsNoValueAndWritingRepairsIt) {
  EXPECT_FALSE(store_.ReadString(kSettingsKey(), u"DownloadPath"));
  for (const char* text : {"not json at all", "[1,2,3]", "{\"DownloadPath\": 42}",
                           "{\"DownloadPath\": \"unterminated", "\xFF\xFE\x00", "{{{{"}) {
    WriteRaw(text);
    EXPECT_FALSE(store_.ReadString(kSettingsKey(), u"DownloadPath")) << text;
  }
  ASSERT_TRUE(store_.WriteString(kSettingsKey(), u"DownloadPath", u"/tmp/x"));
  EXPECT_EQ(store_.ReadString(kSettingsKey(), u"DownloadPath"), WString(u"/tmp/x"));
}

}  // namespace

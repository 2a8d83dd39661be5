#include "platform/settings_store.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace platform;
namespace fs = std::filesystem;

namespace {

class SettingsStoreTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(root_);
  }
  void WriteRaw(const std::string& text) {
    fs::create_directories(fs::path(store_.FileFor(kSettingsKey())).parent_path());
    std::ofstream(store_.FileFor(kSettingsKey()), std::ios::binary) << text;
  }
  static WString kSettingsKey() { return u"Software\\Ostrel"; }

  const std::string root_ = testing::TempDir() + "/settings-" +
                            testing::UnitTest::GetInstance()->current_test_info()->name();
  FileSettingsStore store_{root_};
};

TEST_F(SettingsStoreTest, MissingStoreReadsAsNoValue) {
  EXPECT_FALSE(store_.ReadString(kSettingsKey(), u"DownloadPath"));
}

TEST_F(SettingsStoreTest, WrittenValueReadsBackAndKeepsOthers) {
  ASSERT_TRUE(store_.WriteString(kSettingsKey(), u"DownloadPath", u"/data/下载"));
  ASSERT_TRUE(store_.WriteString(kSettingsKey(), u"Other", u"x"));
  EXPECT_EQ(store_.ReadString(kSettingsKey(), u"DownloadPath"), WString(u"/data/下载"));
  EXPECT_EQ(store_.ReadString(kSettingsKey(), u"Other"), WString(u"x"));
  EXPECT_EQ(store_.FileFor(kSettingsKey()), root_ + "/Software/Ostrel.json");
  // No temporary files are left beside the store.
  size_t files = 0;
  for (auto& entry : fs::directory_iterator(root_ + "/Software")) {
    (void)entry;
    ++files;
  }
  EXPECT_EQ(files, 1u);
}

TEST_F(SettingsStoreTest, CorruptOrWrongTypedStoreReadsAsNoValue) {
  for (const char* text : {"not json at all", "[1,2,3]", "{\"DownloadPath\": 42}",
                           "{\"DownloadPath\": \"unterminated", "\xFF\xFE\x00"}) {
    WriteRaw(text);
    EXPECT_FALSE(store_.ReadString(kSettingsKey(), u"DownloadPath")) << text;
  }
}

TEST_F(SettingsStoreTest, WritingOverACorruptStoreRepairsIt) {
  WriteRaw("{{{{");
  ASSERT_TRUE(store_.WriteString(kSettingsKey(), u"DownloadPath", u"/tmp/x"));
  EXPECT_EQ(store_.ReadString(kSettingsKey(), u"DownloadPath"), WString(u"/tmp/x"));
}

TEST_F(SettingsStoreTest, StoreInPlaceOfAFolderFailsCleanly) {
  fs::create_directories(root_);
  std::ofstream(root_ + "/Software") << "a file where a folder belongs";
  EXPECT_FALSE(store_.WriteString(kSettingsKey(), u"DownloadPath", u"/x"));
  EXPECT_FALSE(store_.ReadString(kSettingsKey(), u"DownloadPath"));
}

}  // namespace

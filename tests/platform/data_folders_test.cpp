#include "platform/data_folders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/folders.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

class MemorySettings : public SettingsStore {
 public:
  std::optional<WString> ReadString(const WString& key, const WString& name) const override {
    auto it = values.find(key + u"|" + name);
    if (it == values.end()) return std::nullopt;
    return it->second;
  }
  bool WriteString(const WString& key, const WString& name, const WString& value) override {
    if (fail_writes) return false;
    values[key + u"|" + name] = value;
    return true;
  }
  std::map<WString, WString> values;
  bool fail_writes = false;
};

class DataFoldersTest : public testing::Test {
 protected:
  void SetUp() override {
    docs_ = testing::TempDir() + "/docs-" +
            testing::UnitTest::GetInstance()->current_test_info()->name();
    fs::remove_all(docs_);
    setenv("IM_COMMON_DOCS_DIR", docs_.c_str(), 1);
  }
  std::string docs_;
  MemorySettings settings_;
  DataFolders folders_{settings_};
};

TEST_F(DataFoldersTest, DefaultDownloadFolderIsPerUserAndCreated) {
  folders_.Prepare(u"u1");
  const WString expected = Utf8ToUtf16(docs_) + u"/Vantorel/u1/cache/recv";
  EXPECT_EQ(folders_.GetDownloadPath(), expected);
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/u1/cache/recv"));
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/u1/cache/face"));
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/u1/db"));
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/log"));
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/cfg"));
}

TEST_F(DataFoldersTest, ResourceFoldersHangOffTheModuleFolderAndAreNotCreated) {
  setenv("IM_MODULE_DIR", (docs_ + "/app").c_str(), 1);
  folders_.Prepare(u"u1");
  unsetenv("IM_MODULE_DIR");
  const WString module = Utf8ToUtf16(docs_) + u"/app";
  EXPECT_EQ(folders_.GetModulePath(), module);
  EXPECT_EQ(folders_.GetImagePath(), module + u"/DuiLibRes/img");
  EXPECT_EQ(folders_.GetEmojiPath(), module + u"/DuiLibRes/emoji/");
  EXPECT_FALSE(fs::exists(docs_ + "/app"));
}

TEST_F(DataFoldersTest, ModuleFolderDefaultsToTheExecutablesFolder) {
  folders_.Prepare(u"u1");
  EXPECT_EQ(folders_.GetModulePath(),
            Utf8ToUtf16(fs::read_symlink("/proc/self/exe").parent_path().string()));
}

TEST_F(DataFoldersTest, EmptyStoredValueIsIgnored) {
  settings_.values[u"Software\\Ostrel|DownloadPath"] = u"";
  folders_.Prepare(u"u1");
  EXPECT_EQ(folders_.GetDownloadPath(), Utf8ToUtf16(docs_) + u"/Vantorel/u1/cache/recv");
}

TEST_F(DataFoldersTest, StoredValueOverridesAndIsCreated) {
  const std::string chosen = docs_ + "/我的下载";
  settings_.values[u"Software\\Ostrel|DownloadPath"] = Utf8ToUtf16(chosen);
  folders_.Prepare(u"u1");
  EXPECT_EQ(folders_.GetDownloadPath(), Utf8ToUtf16(chosen));
  EXPECT_TRUE(fs::is_directory(chosen));
  // The default folder is still prepared first.
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/u1/cache/recv"));
}

TEST_F(DataFoldersTest, TwoUsersShareLogAndConfigButNotDatabase) {
  folders_.Prepare(u"u1");
  const WString log1 = folders_.GetLogPath(), cfg1 = folders_.GetConfigPath(),
                db1 = folders_.GetDbPath(), face1 = folders_.GetFacePath();
  folders_.Prepare(u"u2");
  EXPECT_EQ(folders_.GetLogPath(), log1);
  EXPECT_EQ(folders_.GetConfigPath(), cfg1);
  EXPECT_EQ(log1, Utf8ToUtf16(docs_) + u"/Vantorel/log");
  EXPECT_EQ(cfg1, Utf8ToUtf16(docs_) + u"/Vantorel/cfg");
  EXPECT_NE(folders_.GetDbPath(), db1);
  EXPECT_NE(folders_.GetFacePath(), face1);
  EXPECT_EQ(folders_.GetDbPath(), Utf8ToUtf16(docs_) + u"/Vantorel/u2/db");
}

TEST_F(DataFoldersTest, ChosenFolderStaysAfterCancelInMemoryAndInStore) {
  folders_.Prepare(u"u1");
  const WString chosen = Utf8ToUtf16(docs_) + u"/elsewhere";
  folders_.SetDownloadPath(chosen);
  ASSERT_TRUE(folders_.SaveDownloadPath(chosen));
  EXPECT_EQ(folders_.GetDownloadPath(), chosen);
  EXPECT_EQ(settings_.ReadString(kSettingsKey, kDownloadPathValue), chosen);
  folders_.Prepare(u"u1");  // the next sign-in reads it back
  EXPECT_EQ(folders_.GetDownloadPath(), chosen);
}

TEST_F(DataFoldersTest, FailedSaveKeepsTheFolderForThisProcess) {
  folders_.Prepare(u"u1");
  settings_.fail_writes = true;
  const WString chosen = Utf8ToUtf16(docs_) + u"/elsewhere";
  folders_.SetDownloadPath(chosen);
  EXPECT_FALSE(folders_.SaveDownloadPath(chosen));
  EXPECT_EQ(folders_.GetDownloadPath(), chosen);
}

TEST_F(DataFoldersTest, PathsLongerThanTheOldBufferAreAllowed) {
  docs_ += "/" + std::string(120, 'a') + "/" + std::string(120, 'b');
  setenv("IM_COMMON_DOCS_DIR", docs_.c_str(), 1);
  folders_.Prepare(u"u1");
  EXPECT_GT(folders_.GetDbPath().size(), 260u);
  EXPECT_TRUE(FolderExists(folders_.GetDbPath()));
}

TEST_F(DataFoldersTest, UncreatableFolderIsNotFatal) {
  fs::create_directories(docs_);
  std::ofstream(docs_ + "/Vantorel") << "a file where the tree belongs";
  folders_.Prepare(u"u1");
  EXPECT_FALSE(FolderExists(folders_.GetDbPath()));
  EXPECT_EQ(folders_.GetDbPath(), Utf8ToUtf16(docs_) + u"/Vantorel/u1/db");
}

}  // namespace

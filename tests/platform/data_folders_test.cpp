#include "platform/data_folders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/folders.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

class DataFoldersTest : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(docs_);
    setenv("IM_COMMON_DOCS_DIR", docs_.c_str(), 1);
  }
  void Store(const WString& value) {
    ASSERT_TRUE(settings_.WriteString(kSettingsKey, kDownloadPathValue, value));
  }
  std::string docs_ =
      testing::TempDir() + "/docs-" + testing::UnitTest::GetInstance()->current_test_info()->name();
  FileSettingsStore settings_{docs_ + "/settings"};
  DataFolders folders_{settings_};
};

// An empty stored download folder counts as none.
TEST_F(DataFoldersTest, DefaultDownloadFolderIsPerUserAndCreated) {
  Store(u"");
  folders_.Prepare(u"u1");
  EXPECT_EQ(folders_.GetDownloadPath(), Utf8ToUtf16(docs_) + u"/Vantorel/u1/cache/recv");
  for (const char* folder : {"u1/cache/recv", "u1/cache/face", "u1/db", "log", "cfg"}) {
    EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/" + folder)) << folder;
  }
}

TEST_F(DataFoldersTest, ResourceFoldersHangOffTheModuleFolderAndAreNotCreated) {
  folders_.Prepare(u"u1");
  EXPECT_EQ(folders_.GetModulePath(),
            Utf8ToUtf16(fs::read_symlink("/proc/self/exe").parent_path().string()));
  setenv("IM_MODULE_DIR", (docs_ + "/app").c_str(), 1);
  folders_.Prepare(u"u1");
  unsetenv("IM_MODULE_DIR");
  const WString module = Utf8ToUtf16(docs_) + u"/app";
  EXPECT_EQ(folders_.GetModulePath(), module);
  EXPECT_EQ(folders_.GetImagePath(), module + u"/DuiLibRes/img");
  EXPECT_EQ(folders_.GetEmojiPath(), module + u"/DuiLibRes/emoji/");
  EXPECT_FALSE(fs::exists(docs_ + "/app"));
}

TEST_F(DataFoldersTest, StoredValueOverridesAndIsCreated) {
  const std::string chosen = docs_ + "/我的下载";
  Store(Utf8ToUtf16(chosen));
  folders_.Prepare(u"u1");
  EXPECT_EQ(folders_.GetDownloadPath(), Utf8ToUtf16(chosen));
  EXPECT_TRUE(fs::is_directory(chosen));
  // The default folder is still prepared first.
  EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/u1/cache/recv"));
}

TEST_F(DataFoldersTest, TwoUsersShareLogAndConfigButNotDatabase) {
  const WString root = Utf8ToUtf16(docs_) + u"/Vantorel/";
  for (const WString user : {u"u1", u"u2"}) {
    folders_.Prepare(user);
    EXPECT_EQ(folders_.GetLogPath(), root + u"log");
    EXPECT_EQ(folders_.GetConfigPath(), root + u"cfg");
    EXPECT_EQ(folders_.GetDbPath(), root + user + u"/db");
    EXPECT_EQ(folders_.GetFacePath(), root + user + u"/cache/face");
  }
}

TEST_F(DataFoldersTest, ChosenFolderStaysInMemoryAndInStore) {
  const WString chosen = Utf8ToUtf16(docs_) + u"/elsewhere";
  folders_.Prepare(u"u1");
  folders_.SetDownloadPath(chosen);
  // A file where the store's folder belongs: the save fails, this process
  // keeps the folder all the same.
  fs::create_directories(docs_ + "/settings");
  std::ofstream(docs_ + "/settings/Software") << "x";
  EXPECT_FALSE(folders_.SaveDownloadPath(chosen));
  EXPECT_EQ(folders_.GetDownloadPath(), chosen);
  fs::remove(docs_ + "/settings/Software");
  ASSERT_TRUE(folders_.SaveDownloadPath(chosen));
  EXPECT_EQ(settings_.ReadString(kSettingsKey, kDownloadPathValue), chosen);
  folders_.Prepare(u"u1");  // the next sign-in reads it back
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

namespace {

// Ids that would name a folder outside the user's own, or a shared one, are
// refused before anything is created.
TEST_F(DataFoldersTest, IdsThatAreNotAFolderOfTheirOwnAreRefused) {
  const WString refused[] = {u"",
                             u".",
                             u"..",
                             u"../../escape",
                             u"a/b",
                             u"a\\b",
                             u"log",
                             u"CFG",
                             u"a\nb",
                             u"\x7f",
                             WString(129, u'x'),
                             WString(43, u'图')};  // 129 bytes each
  for (const WString& id : refused) {
    SCOPED_TRACE(Utf16ToUtf8(id));
    EXPECT_FALSE(folders_.Prepare(id));
    EXPECT_FALSE(fs::exists(docs_)) << "something was created";
  }
  for (const WString& id :
       {WString(u"10001"), WString(u"logs"), WString(u"..a"), WString(128, u'x')}) {
    SCOPED_TRACE(Utf16ToUtf8(id));
    EXPECT_TRUE(folders_.Prepare(id));
    EXPECT_TRUE(fs::is_directory(docs_ + "/Vantorel/" + Utf16ToUtf8(id) + "/db"));
  }
}

}  // namespace

// Files the store cannot use: traced, nothing crashes, nothing stored before
// is lost, and the next sign-in tries again.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::MessageWith;
using store_test::Rows;
using store_test::Select;
using store_test::TextElem;

// Everything a signed-in session does, against whatever the store holds.
void UseAsASessionWould(CChatDb& db) {
  db.SaveMessage(u"me", MessageWith(u"c", 900, 9, TextElem(u"new")));
  db.SaveMessageList(u"me", {MessageWith(u"c", 901, 9, TextElem(u"page"))});
  db.SaveLocalNotice(u"me", MessageWith(u"c", 902, 9, TextElem(u"")), u"notice");
  db.UpdateDrawingPath(900, u"/x.dwg");
  std::vector<MessageStru> read;
  db.QueryCurrentConvMsg(u"c", u"me", 10, read);
  db.RunSql(u"me", u"nothing-here");
}

std::string CreateWithRows(const std::string& path, int rows) {
  CChatDb db;
  EXPECT_TRUE(db.Open(path));
  db.CreateSchema();
  std::vector<MessageStru> messages;
  for (int i = 0; i < rows; ++i) {
    messages.push_back(MessageWith(u"c", i + 1, i + 1, TextElem(WString(200, u'x'))));
  }
  db.SaveMessageList(u"me", messages);
  return path;
}

TEST(ChatDbFailures, UnwritableFolderIsTracedAndNextLoginTriesAgain) {
  std::string folder = store_test::NewFolder();
  // A path below a regular file cannot be created, even by root.
  store_test::WriteFile(folder + "/not-a-folder", "x");
  platform::ScopedTraceCapture trace;
  CChatDb db;
  EXPECT_FALSE(db.Open(folder + "/not-a-folder/Chat.db"));
  EXPECT_TRUE(trace.Contains("打开数据库连接失败!!!!!!"));
  EXPECT_FALSE(db.IsOpen());
  db.CreateSchema();
  UseAsASessionWould(db);
  std::vector<MessageStru> read;
  EXPECT_FALSE(db.QueryCurrentConvMsg(u"c", u"me", 10, read));

  db.Close();
  ASSERT_TRUE(db.Open(folder + "/Chat.db"));
  db.CreateSchema();
  UseAsASessionWould(db);
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"c", u"me", 10, read));
  EXPECT_EQ(read.size(), 3u);
}

struct DamagedFile {
  const char* name;
  std::function<std::string(const std::string& healthyBytes)> damage;
  bool staysOpen;  // the damage only shows when the damaged pages are read
};

TEST(ChatDbFailures, DamagedFilesAreLeftExactlyAsTheyWere) {
  const DamagedFile cases[] = {
      {"garbage", [](const std::string& b) { return std::string(b.size(), '\x5A'); }, false},
      {"short text file", [](const std::string&) { return std::string("hello, not sqlite\n"); },
       false},
      {"schema page destroyed",
       [](const std::string& b) {
         std::string d = b;
         for (size_t i = 100; i < 4096 && i < d.size(); ++i) d[i] = '\xA5';
         return d;
       },
       false},
      {"table pages destroyed",
       [](const std::string& b) {
         std::string d = b;
         for (size_t i = 4096; i < d.size(); ++i) d[i] = static_cast<char>(i * 7);
         return d;
       },
       true},
  };
  for (const DamagedFile& c : cases) {
    SCOPED_TRACE(c.name);
    std::string path = CreateWithRows(store_test::NewFolder() + "/Chat.db", 300);
    std::string damaged = c.damage(store_test::ReadFile(path));
    store_test::WriteFile(path, damaged);

    platform::ScopedTraceCapture trace;
    CChatDb db;
    for (int login = 0; login < 2; ++login) {
      db.Open(path);
      db.CreateSchema();
      EXPECT_EQ(db.IsOpen(), c.staysOpen);
      UseAsASessionWould(db);
      db.Close();
    }
    const char* expectedTrace =
        c.staysOpen ? "CChatDb: statement failed" : "is not a usable database";
    EXPECT_TRUE(trace.Contains(expectedTrace));
    EXPECT_EQ(store_test::ReadFile(path), damaged);
  }
}

TEST(ChatDbFailures, FullDiskKeepsEarlierRowsAndReleasesTheFile) {
  std::string path = CreateWithRows(store_test::NewFolder() + "/Chat.db", 5);
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  std::string pages = Select(path, "pragma page_count;")[0][0];
  // The connection may not grow the file: every larger write meets a full disk.
  db.ExecuteTransaction({"PRAGMA max_page_count=" + pages + ";"});

  platform::ScopedTraceCapture trace;
  std::vector<MessageStru> page;
  for (int i = 0; i < 2000; ++i) {
    page.push_back(MessageWith(u"c", 1000 + i, 1000, TextElem(WString(300, u'y'))));
  }
  db.SaveMessageList(u"me", page);
  db.SaveMessage(u"me", MessageWith(u"c", 5000, 5000, TextElem(WString(100000, u'z'))));
  EXPECT_TRUE(trace.Contains("full"));

  std::vector<MessageStru> read;
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"c", u"me", 1, read));
  EXPECT_EQ(Select(path, "select count(*) from MessageTbl where kTIMMsgUniqueId<=5;"),
            (Rows{{"5"}}));
  // No transaction was left open: another writer gets the file.
  EXPECT_TRUE(store_test::Exec(path, "create table probe(x); drop table probe;"));

  // The next sign-in has room again.
  db.Close();
  ASSERT_TRUE(db.Open(path));
  db.SaveMessage(u"me", MessageWith(u"c", 6000, 6000, TextElem(u"after")));
  read.clear();
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"c", u"me", 1, read));
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].unique_id, 6000u);
}

TEST(ChatDbFailures, CommitRefusedByAnotherReaderIsRolledBack) {
  std::string path = CreateWithRows(store_test::NewFolder() + "/Chat.db", 3);
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();

  // A second process reading the file holds its shared lock.
  sqlite3* reader = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &reader), SQLITE_OK);
  sqlite3_stmt* read = nullptr;
  ASSERT_EQ(sqlite3_prepare_v2(reader, "select id from MessageTbl;", -1, &read, nullptr),
            SQLITE_OK);
  ASSERT_EQ(sqlite3_step(read), SQLITE_ROW);

  platform::ScopedTraceCapture trace;
  db.SaveMessage(u"me", MessageWith(u"c", 77, 77, TextElem(u"blocked")));
  EXPECT_TRUE(trace.Contains("CChatDb: commit failed"));
  sqlite3_finalize(read);
  sqlite3_close(reader);

  // Nothing is left pending: the next save commits on its own.
  db.SaveMessage(u"me", MessageWith(u"c", 78, 78, TextElem(u"later")));
  EXPECT_EQ(Select(path, "select kTIMMsgUniqueId from MessageTbl where kTIMMsgUniqueId>3;"),
            (Rows{{"78"}}));
}

}  // namespace

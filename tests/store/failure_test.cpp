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

// Everything a signed-in session does; true when the query ran.
bool UseAsASessionWould(CChatDb& db) {
  db.SaveMessage(u"me", MessageWith(u"c", 900, 9, TextElem(u"new")));
  db.SaveMessageList(u"me", {MessageWith(u"c", 901, 9, TextElem(u"page"))});
  db.SaveLocalNotice(u"me", MessageWith(u"c", 902, 9, TextElem(u"")), u"notice");
  db.UpdateDrawingPath(900, u"/x.dwg");
  db.RunSql(u"me", u"nothing-here");
  std::vector<MessageStru> read;
  return db.QueryCurrentConvMsg(u"c", u"me", 10, read) && read.size() == 3;
}

std::string CreateWithRows(int count) {
  CChatDb db;
  std::string path = store_test::OpenFresh(db);
  std::vector<MessageStru> messages;
  for (int i = 1; i <= count; ++i) {
    messages.push_back(MessageWith(u"c", i, i, TextElem(WString(200, u'x'))));
  }
  db.SaveMessageList(u"me", messages);
  return path;
}

TEST(ChatDbFailures, UnwritableFolderIsTracedAndNextLoginTriesAgain) {
  std::string folder = store_test::NewFolder() + "/user";
  // A path below a regular file cannot be created, even by root.
  store_test::WriteFile(folder, "x");
  platform::ScopedTraceCapture trace;
  CChatDb db;
  EXPECT_FALSE(db.Open(folder + "/Chat.db"));
  EXPECT_TRUE(trace.Contains("打开数据库连接失败!!!!!!"));
  EXPECT_FALSE(db.IsOpen());
  db.CreateSchema();
  EXPECT_FALSE(UseAsASessionWould(db));

  std::filesystem::remove(folder);
  std::filesystem::create_directory(folder);
  ASSERT_TRUE(db.Open(folder + "/Chat.db"));
  db.CreateSchema();
  EXPECT_TRUE(UseAsASessionWould(db));
}

TEST(ChatDbFailures, DamagedFilesAreLeftExactlyAsTheyWere) {
  const struct {
    const char* name;
    std::function<void(std::string& bytes)> damage;
    bool staysOpen;  // the damage only shows when the damaged pages are read
  } cases[] = {
      {"garbage", [](std::string& b) { b.assign(b.size(), '\x5A'); }, false},
      {"short text file", [](std::string& b) { b = "hello, not sqlite\n"; }, false},
      {"schema page destroyed",
       [](std::string& b) { std::fill(b.begin() + 100, b.begin() + 4096, '\xA5'); }, false},
      {"table pages destroyed",
       [](std::string& b) {
         for (size_t i = 4096; i < b.size(); ++i) b[i] = static_cast<char>(i * 7);
       },
       true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::string path = CreateWithRows(300);
    std::string damaged = store_test::ReadFile(path);
    c.damage(damaged);
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
    if (c.staysOpen) {
      EXPECT_TRUE(trace.Contains("CChatDb: statement failed"));
    } else {
      EXPECT_EQ(trace.Count("is not a usable database"), 2u);
    }
    EXPECT_EQ(store_test::ReadFile(path), damaged);
  }
}

TEST(ChatDbFailures, FullDiskKeepsEarlierRowsAndReleasesTheFile) {
  std::string path = CreateWithRows(5);
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  // The connection may not grow the file: every larger write meets a full disk.
  db.ExecuteTransaction({"PRAGMA max_page_count=" + Select(path, "pragma page_count;")[0][0]});

  platform::ScopedTraceCapture trace;
  std::vector<MessageStru> page;
  for (int i = 0; i < 2000; ++i) {
    page.push_back(MessageWith(u"c", 1000 + i, 1000, TextElem(WString(300, u'y'))));
  }
  db.SaveMessageList(u"me", page);
  db.SaveMessage(u"me", MessageWith(u"c", 5000, 5000, TextElem(WString(100000, u'z'))));
  EXPECT_TRUE(trace.Contains("full"));
  EXPECT_EQ(Select(path, "select count(*) from MessageTbl where kTIMMsgUniqueId<=5;"),
            (Rows{{"5"}}));
  // No transaction was left open: another writer gets the file.
  EXPECT_TRUE(store_test::Exec(path, "create table probe(x); drop table probe;"));

  // The next sign-in has room again.
  db.Close();
  ASSERT_TRUE(db.Open(path));
  db.SaveMessage(u"me", MessageWith(u"c", 6000, 6000, TextElem(u"after")));
  std::vector<MessageStru> read;
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"c", u"me", 1, read));
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].unique_id, 6000u);
}

TEST(ChatDbFailures, CommitRefusedByAnotherReaderIsRolledBack) {
  std::string path = CreateWithRows(3);
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  // A second process reading the file holds its shared lock.
  sqlite3* reader = nullptr;
  sqlite3_stmt* read = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &reader), SQLITE_OK);
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

// Files the store cannot use: traced, nothing crashes, nothing stored before
// is lost, and the next sign-in tries again.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Another connection holds the file: a plain reader (the commit cannot get
// its exclusive lock), a writer in the middle of its transaction, or a writer
// on a fresh file (the schema cannot be committed). What is saved meanwhile
// is kept and written by the first save once the file is free.
TEST(ChatDbFailures, BusyFileLosesNothing) {
  const struct {
    const char* holder;
    bool fresh_file;
    const char* hold;  // statement the other connection runs and keeps open
  } cases[] = {
      {"reader", false, "select id from MessageTbl;"},
      {"writer", false, "BEGIN IMMEDIATE;"},
      {"writer of a fresh file", true, "BEGIN EXCLUSIVE;"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.holder);
    const std::string path =
        c.fresh_file ? store_test::NewFolder() + "/Chat.db" : CreateWithRows(3);
    sqlite3* other = nullptr;
    sqlite3_stmt* held = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_prepare_v2(other, c.hold, -1, &held, nullptr), SQLITE_OK);
    ASSERT_NE(sqlite3_step(held), SQLITE_MISUSE);

    CChatDb db;
    db.SetBusyWait(20);
    ASSERT_TRUE(db.Open(path));
    db.CreateSchema();
    for (int i = 0; i < 4; ++i) {
      db.SaveMessage(u"me", MessageWith(u"c", 100 + i, 100 + i, TextElem(u"while busy")));
      db.SaveMessageList(u"me", {MessageWith(u"c", 200 + i, 200 + i, TextElem(u"page"))});
    }
    EXPECT_EQ(db.KeptStatementCount(), 8u);
    sqlite3_finalize(held);
    sqlite3_close(other);  // a transaction still open is rolled back

    db.SaveMessage(u"me", MessageWith(u"c", 300, 300, TextElem(u"free again")));
    EXPECT_EQ(db.KeptStatementCount(), 0u);
    EXPECT_EQ(Select(path, "select count(*) from MessageTbl where kTIMMsgUniqueId>=100;"),
              (Rows{{"9"}}));
    EXPECT_EQ(Select(path, "select DbVersion from ConfigTbl;"), (Rows{{"1.0"}}));
  }
}

// A process killed in the middle of a burst of inserts leaves a file that
// opens and passes SQLite's integrity check, with what it had committed.
TEST(ChatDbFailures, KilledDuringInsertsLeavesAnIntactFile) {
  const std::string path = store_test::NewFolder() + "/Chat.db";
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    CChatDb db;
    db.Open(path);
    db.CreateSchema();
    for (uint64_t id = 1;; id += 51) {
      db.SaveMessage(u"me", MessageWith(u"c", id, id, TextElem(WString(300, u'x'))));
      std::vector<MessageStru> page;
      for (uint64_t i = 1; i <= 50; ++i)
        page.push_back(MessageWith(u"c", id + i, id, TextElem(u"p")));
      db.SaveMessageList(u"me", page);
    }
  }
  // Killed once the burst is well under way.
  struct stat st {};
  for (int i = 0; i < 2000 && (stat(path.c_str(), &st) != 0 || st.st_size < (256 << 10)); ++i) {
    usleep(5000);
  }
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));

  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  EXPECT_EQ(Select(path, "pragma integrity_check;"), (Rows{{"ok"}}));
  std::vector<MessageStru> read;
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"c", u"me", 1, read));
  EXPECT_EQ(read.size(), 1u);
}

}  // namespace

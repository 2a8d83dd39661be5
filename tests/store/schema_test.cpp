// Opening Chat.db: the tables, their columns, the version row, the index.
#include <gtest/gtest.h>

#include <tuple>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::Rows;
using store_test::Select;

std::string OpenFresh(CChatDb& db) {
  std::string path = store_test::NewFolder() + "/Chat.db";
  EXPECT_TRUE(db.Open(path));
  db.CreateSchema();
  return path;
}

Rows TableNames(const std::string& path) {
  return Select(path,
                "select name from sqlite_master where type='table' and name not like 'sqlite_%' "
                "order by rowid;");
}

TEST(ChatDbSchema, FreshFolderGetsEightTablesAndVersionRow) {
  platform::ScopedTraceCapture trace;
  CChatDb db;
  std::string path = OpenFresh(db);
  EXPECT_TRUE(trace.Contains("打开数据库连接成功!!!!!!"));
  EXPECT_EQ(db.GetPath(), path);
  Rows expected = {{"UserTbl"},      {"FriendTbl"}, {"FriendRequireTbl"}, {"GroupMemTbl"},
                   {"GtoupInfoTbl"}, {"ElemTbl"},   {"MessageTbl"},       {"ConfigTbl"}};
  EXPECT_EQ(TableNames(path), expected);
  EXPECT_EQ(Select(path, "select DbVersion, typeof(DbVersion) from ConfigTbl;"),
            (Rows{{"1.0", "text"}}));
}

TEST(ChatDbSchema, SecondOpenAddsNoVersionRow) {
  CChatDb db;
  std::string path = OpenFresh(db);
  db.Close();
  EXPECT_FALSE(db.IsOpen());
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  EXPECT_EQ(Select(path, "select DbVersion from ConfigTbl;"), (Rows{{"1.0"}}));
}

TEST(ChatDbSchema, OtherVersionIsUsedUnchanged) {
  std::string path = store_test::NewFolder() + "/Chat.db";
  ASSERT_TRUE(store_test::Exec(path,
                               "CREATE TABLE ConfigTbl(DbVersion CHAR (50));"
                               "insert into ConfigTbl(DbVersion) values('2.0');"));
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  EXPECT_EQ(Select(path, "select DbVersion from ConfigTbl;"), (Rows{{"2.0"}}));
  db.SaveMessage(u"me", store_test::MessageWith(u"peer", 7, 100, store_test::TextElem(u"hi")));
  std::vector<MessageStru> read;
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"peer", u"me", 10, read));
  EXPECT_EQ(read.size(), 1u);
}

// name, declared type, not null, default, primary key
using Column = std::tuple<std::string, std::string, std::string, std::string, std::string>;

Column C(const char* name, const char* type, const char* notNull = "0", const char* dflt = "<null>",
         const char* pk = "0") {
  return {name, type, notNull, dflt, pk};
}
Column Id() {
  return C("id", "INTEGER", "0", "<null>", "1");
}

std::vector<Column> TableInfo(const std::string& path, const std::string& table) {
  std::vector<Column> columns;
  for (const auto& r : Select(path, "pragma table_info(" + table + ");")) {
    columns.emplace_back(r[1], r[2], r[3], r[4], r[5]);
  }
  return columns;
}

std::vector<Column> InfoColumns(int from, int to, const char* type, const char* dflt) {
  std::vector<Column> columns;
  for (int i = from; i <= to; ++i) {
    columns.push_back(C(("info" + std::to_string(i)).c_str(), type, "0", dflt));
  }
  return columns;
}

TEST(ChatDbSchema, ColumnsMatchTheirDeclarations) {
  CChatDb db;
  std::string path = OpenFresh(db);
  const char* kVc20 = "VARCHAR (20)";
  const char* kVc100 = "VARCHAR (100)";
  std::vector<Column> message = {
      Id(),
      C("loginUserId", "CHAR (10)", "0", "''"),
      C("kTIMMsgConvId", "CHAR (20)", "0", "''"),
      C("kTIMMsgConvType", "INT", "0", "0"),
      C("kTIMMsgServerTime", "BIGINT", "0", "0"),
      C("kTIMMsgIsFormSelf", "INT", "0", "0"),
      C("kTIMMsgStatus", "INT", "0", "1"),
      C("kTIMMsgUniqueId", "BIGINT", "1", "0"),
      C("kTIMUserProfileNickName", kVc100, "0", "''"),
      C("kTIMUserProfileFaceUrl", "TEXT", "0", "''"),
      C("kTIMMsgPlatform", "INT", "0", "0"),
      C("kTIMElemType", "INT", "0", "-1"),
  };
  for (const Column& c : InfoColumns(1, 12, "TEXT", "''")) message.push_back(c);
  std::vector<Column> elem = {C("id", "INTEGER"), C("kTIMElemType", "INT"),
                              C("kTIMMsgUniqueId", "BIGINT"), C("info1", "TEXT (100)")};
  for (const Column& c : InfoColumns(2, 11, kVc100, "<null>")) elem.push_back(c);

  const std::pair<const char*, std::vector<Column>> tables[] = {
      {"UserTbl",
       {Id(), C("loginUserId", kVc20, "1"), C("email", "VARCHAR (50)"), C("phoneNumber", kVc20),
        C("userName", kVc100), C("isCADUser", "BOOLEAN", "0", "false"),
        C("isFriend", "BOOLEAN", "0", "false")}},
      {"FriendTbl",
       {Id(), C("loginUserId", kVc20, "1"), C("friendId", kVc20, "1"), C("email", "VARCHAR (50)"),
        C("phoneNumber", kVc20), C("userAvatar", "TEXT"), C("remarkName", kVc100),
        C("nickName", kVc100)}},
      {"FriendRequireTbl",
       {Id(), C("loginUserId", kVc20, "1"), C("nickName", kVc100), C("userId", kVc20),
        C("userAvatar", "TEXT"), C("note", kVc100), C("agree", "INTEGER"), C("addTime", "BIGINT")}},
      {"GroupMemTbl",
       {Id(), C("loginUserId", kVc20, "1"), C("groupid", kVc20), C("thirdGroupId", "VARCHAR (50)"),
        C("memberUserId", kVc20), C("nickName", kVc100), C("userAvatar", "TEXT"),
        C("groupRemarkName", kVc100), C("cadPermissionRole", "INTEGER"), C("groupRole", "INTEGER"),
        C("joinTime", "BIGINT")}},
      {"GtoupInfoTbl",
       {Id(), C("loginUserId", kVc20, "1"), C("groupid", kVc20, "1"), C("thirdGroupId", kVc20),
        C("groupName", kVc100), C("groupAvatar", "TEXT"), C("groupRole", "INTEGER"),
        C("notice", kVc100), C("memberCount", "INTEGER"), C("groupRemarkName", kVc100),
        C("groupSpace", "INTEGER")}},
      {"conversationTbl", {}},
      {"ElemTbl", elem},
      {"MessageTbl", message},
      {"ConfigTbl", {C("DbVersion", "CHAR (50)")}},
  };
  for (const auto& [table, columns] : tables) {
    EXPECT_EQ(TableInfo(path, table), columns) << table;
  }
  // kTIMMsgUniqueId is UNIQUE: one auto index on exactly that column.
  EXPECT_EQ(Select(path,
                   "select ii.name from pragma_index_list('MessageTbl') il, "
                   "pragma_index_info(il.name) ii where il.[unique]=1;"),
            (Rows{{"kTIMMsgUniqueId"}}));
}

TEST(ChatDbSchema, ConversationIndexServesTheMessageQuery) {
  CChatDb db;
  std::string path = OpenFresh(db);
  EXPECT_EQ(
      Select(path,
             "select name from pragma_index_info('MessageTbl_conv_user_time') order by seqno;"),
      (Rows{{"kTIMMsgConvId"}, {"loginUserId"}, {"kTIMMsgServerTime"}}));
  Rows plan = Select(path,
                     "explain query plan select * from MessageTbl where kTIMMsgConvId='c' and "
                     "loginUserId='u' order by kTIMMsgServerTime desc limit 100;");
  ASSERT_FALSE(plan.empty());
  EXPECT_NE(plan.back().back().find("MessageTbl_conv_user_time"), std::string::npos);
  EXPECT_EQ(plan.back().back().find("TEMP B-TREE"), std::string::npos);
}

TEST(ChatDbSchema, OlderFileGainsTheIndexAndKeepsItsRows) {
  std::string path = store_test::NewFolder() + "/Chat.db";
  {
    CChatDb db;
    ASSERT_TRUE(db.Open(path));
    db.CreateSchema();
    db.SaveMessage(u"me", store_test::MessageWith(u"peer", 1, 10, store_test::TextElem(u"old")));
  }
  ASSERT_TRUE(store_test::Exec(path, "DROP INDEX MessageTbl_conv_user_time;"));
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  EXPECT_EQ(
      Select(path, "select count(*) from sqlite_master where name='MessageTbl_conv_user_time';"),
      (Rows{{"1"}}));
  EXPECT_EQ(Select(path, "select count(*) from MessageTbl;"), (Rows{{"1"}}));
}

}  // namespace

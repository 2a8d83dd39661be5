#include <gtest/gtest.h>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::Rows;
using store_test::Select;

TEST(ChatDbSchema, FreshFolderGetsEightTablesAndOneVersionRow) {
  platform::ScopedTraceCapture trace;
  CChatDb db;
  std::string path = store_test::OpenFresh(db);
  EXPECT_TRUE(trace.Contains("打开数据库连接成功!!!!!!"));
  EXPECT_EQ(db.GetPath(), path);
  EXPECT_EQ(Select(path,
                   "select group_concat(name, ' ') from sqlite_master where type='table' "
                   "and name not like 'sqlite_%';"),
            (Rows{{"UserTbl FriendTbl FriendRequireTbl GroupMemTbl GtoupInfoTbl ElemTbl "
                   "MessageTbl ConfigTbl"}}));
  for (int login = 0; login < 2; ++login) {
    EXPECT_EQ(Select(path, "select DbVersion, typeof(DbVersion) from ConfigTbl;"),
              (Rows{{"1.0", "text"}}));
    db.Close();
    EXPECT_FALSE(db.IsOpen());
    ASSERT_TRUE(db.Open(path));
    db.CreateSchema();
  }
}

TEST(ChatDbSchema, OlderFileOfAnotherVersionIsUsedUnchangedAndGainsTheIndex) {
  std::string path;
  {
    CChatDb old;
    path = store_test::OpenFresh(old);
    old.SaveMessage(u"me", store_test::MessageWith(u"peer", 1, 10, store_test::TextElem(u"old")));
  }
  ASSERT_TRUE(store_test::Exec(
      path, "DROP INDEX MessageTbl_conv_user_time; update ConfigTbl set DbVersion='2.0';"));
  CChatDb db;
  ASSERT_TRUE(db.Open(path));
  db.CreateSchema();
  EXPECT_EQ(Select(path, "select DbVersion from ConfigTbl;"), (Rows{{"2.0"}}));
  EXPECT_EQ(Select(path, "select name from pragma_index_info('MessageTbl_conv_user_time');"),
            (Rows{{"kTIMMsgConvId"}, {"loginUserId"}, {"kTIMMsgServerTime"}}));
  db.SaveMessage(u"me", store_test::MessageWith(u"peer", 7, 100, store_test::TextElem(u"hi")));
  std::vector<MessageStru> read;
  EXPECT_TRUE(db.QueryCurrentConvMsg(u"peer", u"me", 10, read));
  EXPECT_EQ(read.size(), 2u);
}

// A table's columns as "name TYPE" with ! for NOT NULL, =default, * for the
// primary key, joined by ", ".
std::string Columns(const std::string& path, const std::string& table) {
  return Select(path,
                "select ifnull(group_concat(name || ' ' || type || iif(\"notnull\", '!', '') || "
                "ifnull('=' || dflt_value, '') || iif(pk, '*', ''), ', '), '') "
                "from pragma_table_info('" +
                    table + "');")[0][0];
}

std::string InfoColumns(int from, int to, const std::string& declaration) {
  std::string out;
  for (int i = from; i <= to; ++i) out += ", info" + std::to_string(i) + " " + declaration;
  return out;
}

TEST(ChatDbSchema, ColumnsMatchTheirDeclarations) {
  CChatDb db;
  std::string path = store_test::OpenFresh(db);
  const std::pair<const char*, std::string> tables[] = {
      {"UserTbl",
       "id INTEGER*, loginUserId VARCHAR (20)!, email VARCHAR (50), phoneNumber VARCHAR (20), "
       "userName VARCHAR (100), isCADUser BOOLEAN=false, isFriend BOOLEAN=false"},
      {"FriendTbl",
       "id INTEGER*, loginUserId VARCHAR (20)!, friendId VARCHAR (20)!, email VARCHAR (50), "
       "phoneNumber VARCHAR (20), userAvatar TEXT, remarkName VARCHAR (100), "
       "nickName VARCHAR (100)"},
      {"FriendRequireTbl",
       "id INTEGER*, loginUserId VARCHAR (20)!, nickName VARCHAR (100), userId VARCHAR (20), "
       "userAvatar TEXT, note VARCHAR (100), agree INTEGER, addTime BIGINT"},
      {"GroupMemTbl",
       "id INTEGER*, loginUserId VARCHAR (20)!, groupid VARCHAR (20), thirdGroupId VARCHAR (50), "
       "memberUserId VARCHAR (20), nickName VARCHAR (100), userAvatar TEXT, "
       "groupRemarkName VARCHAR (100), cadPermissionRole INTEGER, groupRole INTEGER, "
       "joinTime BIGINT"},
      {"GtoupInfoTbl",
       "id INTEGER*, loginUserId VARCHAR (20)!, groupid VARCHAR (20)!, thirdGroupId VARCHAR (20), "
       "groupName VARCHAR (100), groupAvatar TEXT, groupRole INTEGER, notice VARCHAR (100), "
       "memberCount INTEGER, groupRemarkName VARCHAR (100), groupSpace INTEGER"},
      {"conversationTbl", ""},
      {"ElemTbl", "id INTEGER, kTIMElemType INT, kTIMMsgUniqueId BIGINT, info1 TEXT (100)" +
                      InfoColumns(2, 11, "VARCHAR (100)")},
      {"MessageTbl",
       "id INTEGER*, loginUserId CHAR (10)='', kTIMMsgConvId CHAR (20)='', "
       "kTIMMsgConvType INT=0, kTIMMsgServerTime BIGINT=0, kTIMMsgIsFormSelf INT=0, "
       "kTIMMsgStatus INT=1, kTIMMsgUniqueId BIGINT!=0, kTIMUserProfileNickName VARCHAR (100)='', "
       "kTIMUserProfileFaceUrl TEXT='', kTIMMsgPlatform INT=0, kTIMElemType INT=-1" +
           InfoColumns(1, 12, "TEXT=''")},
      {"ConfigTbl", "DbVersion CHAR (50)"},
  };
  for (const auto& [table, columns] : tables) EXPECT_EQ(Columns(path, table), columns) << table;
  // kTIMMsgUniqueId is UNIQUE: one auto index on exactly that column.
  EXPECT_EQ(Select(path,
                   "select ii.name from pragma_index_list('MessageTbl') il, "
                   "pragma_index_info(il.name) ii where il.[unique]=1;"),
            (Rows{{"kTIMMsgUniqueId"}}));
}

}  // namespace

// Ids that would break or inject into the SQL text they are written into:
// every statement keeps to the rows of its own account and conversation.
#include <gtest/gtest.h>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "store/sql_id.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::MessageWith;
using store_test::Rows;
using store_test::Select;
using store_test::TextElem;

struct IdCase {
  WString id;
  std::optional<std::string> sqlText;  // as written between quotes; nullopt: refused
  const char* trace;                   // what a refusal says
};

TEST(SqlId, OddIdsAreValuesNeverSql) {
  const IdCase cases[] = {
      {u"plain_id-42", "plain_id-42", nullptr},
      {u"\u5F20\u4E09", "\xE5\xBC\xA0\xE4\xB8\x89", nullptr},
      {u"back\\slash", "back\\slash", nullptr},
      {u"'", "''", nullptr},
      {u"x' or '1'='1", "x'' or ''1''=''1", nullptr},
      {u"a'); delete from MessageTbl; --", "a''); delete from MessageTbl; --", nullptr},
      {u"back\\'slash", "back\\''slash", nullptr},
      {WString(store::kMaxSqlIdBytes, u'x'), std::string(store::kMaxSqlIdBytes, 'x'), nullptr},
      {WString(u"vic\0tim", 7), std::nullopt, "conversation id holds a NUL"},
      {WString(store::kMaxSqlIdBytes + 1, u'v'), std::nullopt, "login user id is 513 bytes long"},
  };
  CChatDb db;
  std::string path = store_test::OpenFresh(db);
  db.SaveMessageList(u"me", {MessageWith(u"victim", 1, 1, TextElem(u"keep me")),
                             MessageWith(u"other", 2, 2, TextElem(u"keep me too"))});
  uint64_t unique = 10;
  for (const IdCase& c : cases) {
    SCOPED_TRACE(platform::Utf16ToUtf8(c.id.substr(0, 40)));
    platform::ScopedTraceCapture trace;
    bool accepted = c.sqlText.has_value();
    EXPECT_EQ(store::SqlIdText(c.id, "id"), c.sqlText);

    // As account and as conversation, through every statement there is.
    db.SaveMessage(c.id, MessageWith(c.id, unique++, 5, TextElem(u"single")));
    db.SaveMessageList(c.id, {MessageWith(c.id, unique++, 6, TextElem(u"batch"))});
    db.SaveMessage(u"me", MessageWith(c.id, unique++, 7, TextElem(u"x")));
    db.SaveMessage(c.id, MessageWith(u"victim", unique++, 8, TextElem(u"x")));
    std::vector<MessageStru> read(1);
    EXPECT_EQ(db.QueryCurrentConvMsg(c.id, c.id, 10, read), accepted);
    EXPECT_EQ(db.QueryCurrentConvMsg(u"victim", c.id, 10, read), accepted);
    ASSERT_EQ(read.size(), accepted ? 4u : 1u);
    EXPECT_TRUE(!accepted || read[1].conv_id == c.id);
    EXPECT_EQ(db.RunSql(c.id, c.id), accepted);
    EXPECT_EQ(db.RunSql(c.id, u"victim"), accepted);
    EXPECT_EQ(db.RunSql(u"me", c.id), accepted);
    EXPECT_TRUE(accepted || trace.Contains(c.trace));
    EXPECT_EQ(trace.Count("数据库执行命令成功!!!!!!"), accepted ? 3u : 0u);
    size_t skipped = trace.Count("statement skipped");  // one per refused call
    EXPECT_TRUE(accepted ? skipped == 0 : skipped >= 10) << skipped;
    EXPECT_EQ(Select(path, "select kTIMMsgConvId from MessageTbl order by id;"),
              (Rows{{"victim"}, {"other"}}));
  }
}

}  // namespace

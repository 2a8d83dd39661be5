// Ids that would break or inject into the SQL text they are written into.
#include <gtest/gtest.h>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "store/message_codec.h"
#include "store/sql_id.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::MessageWith;
using store_test::Rows;
using store_test::Select;
using store_test::TextElem;

TEST(SqlId, QuotesAreDoubledOtherCharactersKept) {
  struct {
    WString id;
    std::string text;
  } cases[] = {
      {u"plain_id-42", "plain_id-42"},
      {u"o'brien", "o''brien"},
      {u"''", "''''"},
      {u"back\\slash", "back\\slash"},
      {u"\u5F20\u4E09", "\xE5\xBC\xA0\xE4\xB8\x89"},
  };
  for (const auto& c : cases) EXPECT_EQ(store::SqlIdText(c.id, "id"), c.text);
}

TEST(SqlId, NulAndOverlongIdsAreRefusedWithATrace) {
  platform::ScopedTraceCapture trace;
  EXPECT_FALSE(store::SqlIdText(WString(u"a\0b", 3), "conversation id"));
  EXPECT_TRUE(trace.Contains("conversation id holds a NUL"));
  EXPECT_TRUE(store::SqlIdText(WString(store::kMaxSqlIdBytes, u'x'), "id"));
  EXPECT_FALSE(store::SqlIdText(WString(store::kMaxSqlIdBytes + 1, u'x'), "login user id"));
  EXPECT_TRUE(trace.Contains("login user id is 513 bytes long"));
}

class HostileIdTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = store_test::NewFolder() + "/Chat.db";
    ASSERT_TRUE(db_.Open(path_));
    db_.CreateSchema();
    db_.SaveMessageList(u"me", {MessageWith(u"victim", 1, 1, TextElem(u"keep me")),
                                MessageWith(u"other", 2, 2, TextElem(u"keep me too"))});
  }
  size_t RowCount() { return std::stoul(Select(path_, "select count(*) from MessageTbl;")[0][0]); }

  std::string path_;
  CChatDb db_;
};

TEST_F(HostileIdTest, QuotedIdsAreStoredQueriedAndDeletedAsValues) {
  const WString ids[] = {u"x' or '1'='1", u"a'); delete from MessageTbl; --", u"back\\'slash",
                         u"'"};
  uint64_t unique = 10;
  for (const WString& id : ids) {
    db_.SaveMessage(id, MessageWith(id, unique++, 5, TextElem(u"single")));
    db_.SaveMessageList(id, {MessageWith(id, unique++, 6, TextElem(u"batch"))});
    std::vector<MessageStru> read;
    ASSERT_TRUE(db_.QueryCurrentConvMsg(id, id, 10, read)) << platform::Utf16ToUtf8(id);
    ASSERT_EQ(read.size(), 2u) << platform::Utf16ToUtf8(id);
    EXPECT_EQ(read[0].conv_id, id);
  }
  EXPECT_EQ(RowCount(), 2u + 2 * std::size(ids));
  for (const WString& id : ids) EXPECT_TRUE(db_.RunSql(id, id));
  EXPECT_EQ(Select(path_, "select kTIMMsgConvId from MessageTbl order by id;"),
            (Rows{{"victim"}, {"other"}}));
}

TEST_F(HostileIdTest, RefusedIdsTouchNothing) {
  platform::ScopedTraceCapture trace;
  const WString refused[] = {WString(u"vic\0tim", 7), WString(5000, u'v')};
  for (const WString& id : refused) {
    db_.SaveMessage(u"me", MessageWith(id, 50, 5, TextElem(u"x")));
    db_.SaveMessageList(u"me", {MessageWith(id, 51, 5, TextElem(u"x"))});
    db_.SaveMessage(id, MessageWith(u"victim", 52, 5, TextElem(u"x")));
    std::vector<MessageStru> read(1);
    EXPECT_FALSE(db_.QueryCurrentConvMsg(id, u"me", 10, read));
    EXPECT_FALSE(db_.QueryCurrentConvMsg(u"victim", id, 10, read));
    EXPECT_EQ(read.size(), 1u);
    EXPECT_FALSE(db_.RunSql(u"me", id));
    EXPECT_FALSE(db_.RunSql(id, u"victim"));
  }
  EXPECT_EQ(RowCount(), 2u);
  EXPECT_GE(trace.Count("statement skipped"), 10u);
}

}  // namespace

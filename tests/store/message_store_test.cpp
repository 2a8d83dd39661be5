// Message rows: what each element kind stores, reading rows back, delete,
// drawing-path update, and the two write paths agreeing.
#include <gtest/gtest.h>

#include <climits>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "store/message_codec.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::MessageWith;
using store_test::Rows;
using store_test::Select;
using store_test::TextElem;

class MessageStoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = store_test::NewFolder() + "/Chat.db";
    ASSERT_TRUE(db_.Open(path_));
    db_.CreateSchema();
  }
  Rows Info(const std::string& where = "1") {
    return Select(path_,
                  "select kTIMElemType,info1,info2,info3,info4,info5,info6,info7,info8,info9,"
                  "info10,info11,info12 from MessageTbl where " +
                      where + " order by id;");
  }
  std::vector<MessageStru> Query(const WString& conv, int limit, const WString& login = u"me") {
    std::vector<MessageStru> out;
    EXPECT_TRUE(db_.QueryCurrentConvMsg(conv, login, limit, out));
    return out;
  }

  std::string path_;
  CChatDb db_;
};

ElemStru Elem(int32_t type) {
  ElemStru elem;
  elem.elem_type = type;
  return elem;
}

ElemStru Drawing(uint32_t msgType) {
  ElemStru elem = Elem(kElemCustom);
  DrawingMsgStru& d = elem.drawing;
  d.msgType = msgType;
  d.fileId = 41;
  d.fileMd5 = u"md5";
  d.fileName = u"plan \u56FE.dwg";
  d.fileRefId = u"ref";
  d.fileSize = -2;
  d.fileType = u"dwg";
  d.fromUserId = u"alice";
  d.subType = 4;
  d.ts = 1700000000123ULL;
  d.type = 6;
  d.filePath = u"/tmp/plan.dwg";
  d.content = u"move 'x'";
  d.fromUserName = u"Alice";
  return elem;
}

// One element of every stored kind, each field filled with something distinct.
std::vector<ElemStru> EveryStoredKind() {
  std::vector<ElemStru> elems;
  ElemStru text = TextElem(u"h\u00E9llo \u4F60\u597D 'q' \\ \U0001F600");
  elems.push_back(text);
  ElemStru notice = Elem(kElemLocalNotice);
  notice.text = u"\u53D1\u9001\u5931\u8D25";
  elems.push_back(notice);
  ElemStru image = Elem(kElemImage);
  image.orig_path = u"/pics/a.png";
  image.thumb_id = u"t1";
  image.large_id = u"l1";
  image.orig_url = u"http://o";
  image.thumb_url = u"http://t";
  image.large_url = u"http://l";
  image.task_id = -7;
  image.orig_download_param = "{\"o\":1}";
  image.thumb_download_param = "{\"t\":2}";
  image.large_download_param = "{\"l\":3}";
  elems.push_back(image);
  ElemStru sound = Elem(kElemSound);
  sound.file_id = u"s1";
  sound.download_param = "{\"s\":1}";
  sound.file_time = 12;
  elems.push_back(sound);
  ElemStru drawingFile = Drawing(kDrawingMsgFile);
  drawingFile.drawing.content = drawingFile.drawing.fromUserName = u"";  // not stored for files
  elems.push_back(drawingFile);
  ElemStru shared = Drawing(kDrawingMsgSharedChat);
  shared.drawing.fileId = 0;  // not stored for a shared-chat message
  shared.drawing.fileMd5 = shared.drawing.fileName = shared.drawing.fileRefId = u"";
  shared.drawing.fileSize = 0;
  shared.drawing.fileType = shared.drawing.filePath = u"";
  elems.push_back(shared);
  ElemStru file = Elem(kElemFile);
  file.file_path = u"/f/big.iso";
  file.file_name = u"big.iso";
  file.download_param = "{\"f\":1}";
  file.file_size = INT32_MIN + 5;  // a file over 2 GiB reads negative
  elems.push_back(file);
  ElemStru video = Elem(kElemVideo);
  video.video_id = u"v1";
  video.image_id = u"c1";
  video.download_param = "{\"v\":1}";
  video.image_download_param = "{\"c\":1}";
  elems.push_back(video);
  return elems;
}

// Every field some kind stores, side by side.
std::string Dump(const ElemStru& e) {
  const DrawingMsgStru& d = e.drawing;
  std::u16string wide = e.text + u"|" + e.orig_path + u"|" + e.thumb_id + u"|" + e.large_id + u"|" +
                        e.orig_url + u"|" + e.thumb_url + u"|" + e.large_url + u"|" + e.file_id +
                        u"|" + e.file_path + u"|" + e.file_name + u"|" + e.video_id + u"|" +
                        e.image_id + u"|" + d.fileMd5 + u"|" + d.fileName + u"|" + d.fileRefId +
                        u"|" + d.fileType + u"|" + d.fromUserId + u"|" + d.filePath + u"|" +
                        d.content + u"|" + d.fromUserName;
  std::string out = platform::Utf16ToUtf8(wide);
  for (long long n :
       {(long long)e.elem_type, (long long)e.task_id, (long long)e.file_time,
        (long long)e.file_size, (long long)d.msgType, (long long)d.fileId, (long long)d.fileSize,
        (long long)d.subType, (long long)d.type, (long long)d.ts}) {
    out += "|" + std::to_string(n);
  }
  return out + "|" + e.orig_download_param + "|" + e.thumb_download_param + "|" +
         e.large_download_param + "|" + e.download_param + "|" + e.image_download_param;
}

TEST_F(MessageStoreTest, TextAIsStoredAsLowNibbleFirstHex) {
  MessageStru message = MessageWith(u"peer", 7, 100, TextElem(u"A"));
  message.sender_profile = {u"N", u"F"};
  EXPECT_EQ(store::BuildInsertStatements(u"me", message),
            std::vector<std::string>{
                "insert into MessageTbl(loginUserId,kTIMMsgConvId,kTIMMsgConvType,"
                "kTIMMsgServerTime,kTIMMsgIsFormSelf,kTIMMsgStatus,kTIMMsgUniqueId,"
                "kTIMUserProfileNickName,kTIMUserProfileFaceUrl,kTIMMsgPlatform,kTIMElemType,"
                "info1) values('me','peer',1,100,0,2,7,'E4','64',3,0,'14');"});
  db_.SaveMessage(u"me", message);
  EXPECT_EQ(Select(path_,
                   "select loginUserId,kTIMMsgConvId,kTIMUserProfileNickName,info1,info2 "
                   "from MessageTbl;"),
            (Rows{{"me", "peer", "E4", "14", ""}}));
}

TEST_F(MessageStoreTest, ColumnTailsByKind) {
  struct Case {
    ElemStru elem;
    const char* tail;  // nullptr: no row
  } cases[] = {
      {TextElem(u"x"), ",info1) values("},
      {Elem(kElemLocalNotice), ",info1) values("},
      {Elem(kElemImage), ",info1,info2,info3,info4,info5,info6,info7,info8,info9,info10) values("},
      {Elem(kElemSound), ",info1,info2,info3) values("},
      {Drawing(kDrawingMsgFile),
       ",info1,info2,info3,info4,info5,info6,info7,info8,info9,info10,info11,info12) values("},
      {Drawing(kDrawingMsgSharedChat), ",info1,info2,info3,info4,info5,info6,info7) values("},
      {Elem(kElemFile), ",info1,info2,info3,info4) values("},
      {Elem(kElemVideo), ",info1,info2,info3,info4) values("},
      {Drawing(0), nullptr},
      {Drawing(3), nullptr},
  };
  for (const Case& c : cases) {
    auto statements = store::BuildInsertStatements(u"me", MessageWith(u"c", 1, 1, c.elem));
    if (c.tail == nullptr) {
      EXPECT_TRUE(statements.empty()) << c.elem.elem_type << "/" << c.elem.drawing.msgType;
      continue;
    }
    ASSERT_EQ(statements.size(), 1u);
    EXPECT_NE(statements[0].find(std::string("kTIMElemType") + c.tail), std::string::npos)
        << statements[0];
  }
  for (int kind :
       std::initializer_list<int>{kElemGroupTips, kElemFace, kElemLocation, kElemGroupReport,
                                  kElemFriendChange, kElemProfileChange, 12, 99}) {
    EXPECT_TRUE(store::BuildInsertStatements(u"me", MessageWith(u"c", 1, 1, Elem(kind))).empty())
        << kind;
  }
}

TEST_F(MessageStoreTest, DrawingFileFillsTwelveInfoColumnsSharedChatSeven) {
  db_.SaveMessage(u"me", MessageWith(u"c", 1, 1, Drawing(kDrawingMsgFile)));
  db_.SaveMessage(u"me", MessageWith(u"c", 2, 2, Drawing(kDrawingMsgSharedChat)));
  db_.SaveMessage(u"me", MessageWith(u"c", 3, 3, Drawing(0)));
  Rows rows = Info();
  ASSERT_EQ(rows.size(), 2u);
  // msgType, fileId, fileMd5, fileName, fileRefId, fileSize, fileType,
  // fromUserId, subType, ts, type, filePath.
  EXPECT_EQ(rows[0][1], "1");
  EXPECT_EQ(rows[0][2], "41");
  EXPECT_EQ(rows[0][6], "-2");
  EXPECT_EQ(rows[0][9], "4");
  EXPECT_EQ(rows[0][10], "1700000000123");
  EXPECT_EQ(rows[0][11], "6");
  for (int i = 1; i <= 12; ++i) EXPECT_NE(rows[0][i], "") << "info" << i;
  // msgType, fromUserName, fromUserId, subType, type, content, ts.
  EXPECT_EQ(rows[1][1], "2");
  EXPECT_EQ(rows[1][4], "4");
  EXPECT_EQ(rows[1][5], "6");
  EXPECT_EQ(rows[1][7], "1700000000123");
  for (int i = 1; i <= 7; ++i) EXPECT_NE(rows[1][i], "") << "info" << i;
  for (int i = 8; i <= 12; ++i) EXPECT_EQ(rows[1][i], "") << "info" << i;
}

TEST_F(MessageStoreTest, OneRowPerMessage) {
  MessageStru textAndImage = MessageWith(u"c", 5, 50, TextElem(u"first"));
  textAndImage.elems.push_back(Elem(kElemImage));
  db_.SaveMessage(u"me", textAndImage);

  MessageStru tipsOnly = MessageWith(u"c", 6, 60, Elem(kElemGroupTips));
  db_.SaveMessage(u"me", tipsOnly);

  // Stored again with other content: the first row stays as it was.
  db_.SaveMessage(u"me", MessageWith(u"c", 5, 99, TextElem(u"second")));
  db_.SaveMessageList(u"me", {MessageWith(u"c", 5, 98, TextElem(u"third"))});

  std::vector<MessageStru> read = Query(u"c", 100);
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].unique_id, 5u);
  EXPECT_EQ(read[0].server_time, 50u);
  ASSERT_EQ(read[0].elems.size(), 1u);
  EXPECT_EQ(read[0].elems[0].elem_type, kElemText);
  EXPECT_EQ(read[0].elems[0].text, u"first");
}

TEST_F(MessageStoreTest, QueryReturnsNewestFirstWithinConversationAndUser) {
  db_.SaveMessageList(u"me", {MessageWith(u"c", 1, 10, TextElem(u"ten")),
                              MessageWith(u"c", 2, 30, TextElem(u"thirty")),
                              MessageWith(u"c", 3, 20, TextElem(u"twenty")),
                              MessageWith(u"other", 4, 40, TextElem(u"elsewhere"))});
  db_.SaveMessage(u"you", MessageWith(u"c", 5, 50, TextElem(u"other user")));

  std::vector<MessageStru> newest = Query(u"c", 1);
  ASSERT_EQ(newest.size(), 1u);
  EXPECT_EQ(newest[0].elems[0].text, u"thirty");

  std::vector<MessageStru> all = Query(u"c", 10);
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0].server_time, 30u);
  EXPECT_EQ(all[1].server_time, 20u);
  EXPECT_EQ(all[2].server_time, 10u);

  // The out list is appended to, not replaced.
  std::vector<MessageStru> list(2);
  EXPECT_TRUE(db_.QueryCurrentConvMsg(u"c", u"you", 10, list));
  EXPECT_EQ(list.size(), 3u);
  EXPECT_TRUE(Query(u"nobody", 10).empty());
}

TEST_F(MessageStoreTest, EveryStoredKindRoundTrips) {
  std::vector<ElemStru> elems = EveryStoredKind();
  for (size_t i = 0; i < elems.size(); ++i) {
    MessageStru message =
        MessageWith(u"conv-" + WString(1, static_cast<char16_t>(u'a' + i)), 1000 + i, 77, elems[i]);
    message.conv_type = 2;
    message.is_from_self = true;
    message.status = 3;
    message.platform = 9;
    message.sender_profile = {u"\u5F20\u4E09", u"http://face/\u5F20.png"};
    db_.SaveMessage(u"me", message);

    std::vector<MessageStru> read = Query(message.conv_id, 5);
    ASSERT_EQ(read.size(), 1u) << Dump(elems[i]);
    const MessageStru& got = read[0];
    EXPECT_EQ(got.conv_id, message.conv_id);
    EXPECT_EQ(got.conv_type, 2u);
    EXPECT_EQ(got.server_time, 77u);
    EXPECT_TRUE(got.is_from_self);
    EXPECT_EQ(got.status, 3u);
    EXPECT_EQ(got.unique_id, 1000 + i);
    EXPECT_EQ(got.platform, 9u);
    EXPECT_EQ(got.sender_profile.nick_name, message.sender_profile.nick_name);
    EXPECT_EQ(got.sender_profile.face_url, message.sender_profile.face_url);
    ASSERT_EQ(got.elems.size(), 1u);
    EXPECT_EQ(got.elems[0].conv_id, message.conv_id);
    EXPECT_TRUE(got.elems[0].is_from_self);
    EXPECT_EQ(got.elems[0].platform, 9u);
    EXPECT_EQ(Dump(got.elems[0]), Dump(elems[i]));
  }
}

TEST_F(MessageStoreTest, ImageKeepsOrigPathButNotOrigId) {
  ElemStru image = Elem(kElemImage);
  image.orig_path = u"/p.png";
  image.orig_id = u"server-orig";
  db_.SaveMessage(u"me", MessageWith(u"c", 1, 1, image));
  std::vector<MessageStru> read = Query(u"c", 1);
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].elems[0].orig_path, u"/p.png");
  EXPECT_EQ(read[0].elems[0].orig_id, u"");
}

// The batch path binds values; the rows must be the ones the SQL text makes,
// down to the storage class of every value.
TEST(MessageStoreWritePaths, BatchAndSingleSavesStoreIdenticalRows) {
  std::vector<MessageStru> messages;
  uint64_t id = 1;
  for (const ElemStru& elem : EveryStoredKind()) {
    messages.push_back(MessageWith(u"c'q", id, 100 + id, elem));
    ++id;
  }
  messages.push_back(MessageWith(u"c'q", ULLONG_MAX, ULLONG_MAX, TextElem(u"huge numbers")));
  messages.back().conv_type = UINT32_MAX;

  std::string folder = store_test::NewFolder();
  CChatDb single, batch;
  ASSERT_TRUE(single.Open(folder + "/single.db"));
  single.CreateSchema();
  ASSERT_TRUE(batch.Open(folder + "/batch.db"));
  batch.CreateSchema();
  for (const MessageStru& m : messages) single.SaveMessage(u"me", m);
  batch.SaveMessageList(u"me", messages);

  std::string columns;
  for (const auto& r : Select(folder + "/single.db", "pragma table_info(MessageTbl);")) {
    columns += (columns.empty() ? "quote(" : ",quote(") + r[1] + ")";
  }
  std::string sql = "select " + columns + " from MessageTbl order by id;";
  Rows expected = Select(folder + "/single.db", sql);
  EXPECT_EQ(expected.size(), messages.size());
  EXPECT_EQ(Select(folder + "/batch.db", sql), expected);
}

TEST_F(MessageStoreTest, LocalNoticeIsStoredAsKindMinusOne) {
  MessageStru context = MessageWith(u"g1", 42, 500, TextElem(u"ignored"));
  context.elems.push_back(Elem(kElemImage));
  db_.SaveLocalNotice(u"me", context, u"\u7FA4\u540D\u79F0\u4FEE\u6539\u4E3A\"x\"");
  std::vector<MessageStru> read = Query(u"g1", 10);
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].unique_id, 42u);
  ASSERT_EQ(read[0].elems.size(), 1u);
  EXPECT_EQ(read[0].elems[0].elem_type, kElemLocalNotice);
  EXPECT_EQ(read[0].elems[0].text, u"\u7FA4\u540D\u79F0\u4FEE\u6539\u4E3A\"x\"");
}

TEST_F(MessageStoreTest, RunSqlDeletesOneConversationOfOneUser) {
  db_.SaveMessageList(
      u"me", {MessageWith(u"c", 1, 1, TextElem(u"a")), MessageWith(u"c", 2, 2, TextElem(u"b")),
              MessageWith(u"d", 3, 3, TextElem(u"c"))});
  db_.SaveMessage(u"you", MessageWith(u"c", 4, 4, TextElem(u"d")));
  platform::ScopedTraceCapture trace;
  EXPECT_TRUE(db_.RunSql(u"me", u"c"));
  EXPECT_TRUE(trace.Contains("数据库执行命令成功!!!!!!"));
  EXPECT_EQ(Select(path_, "select loginUserId,kTIMMsgConvId from MessageTbl order by id;"),
            (Rows{{"me", "d"}, {"you", "c"}}));
}

TEST_F(MessageStoreTest, UpdateDrawingPathPointsTheRowAtTheLocalCopy) {
  db_.SaveMessage(u"me", MessageWith(u"c", 1ULL << 40, 1, Drawing(kDrawingMsgFile)));
  db_.SaveMessage(u"me", MessageWith(u"c", 2, 2, Drawing(kDrawingMsgFile)));
  db_.UpdateDrawingPath(1ULL << 40, u"/home/u/\u56FE\u7EB8.dwg");
  std::vector<MessageStru> read = Query(u"c", 10);
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0].elems[0].drawing.filePath, u"/tmp/plan.dwg");  // unique id 2, newer
  EXPECT_EQ(read[1].elems[0].drawing.filePath, u"/home/u/\u56FE\u7EB8.dwg");
}

}  // namespace

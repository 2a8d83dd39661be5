// Message rows: what each element kind stores, reading rows back, delete,
// drawing-path update, and the two write paths agreeing.
#include <gtest/gtest.h>

#include <climits>
#include <deque>

#include "store/chat_db.h"
#include "store/message_codec.h"
#include "tests/store/store_test_support.h"

namespace {

using store_test::MessageWith;
using store_test::Rows;
using store_test::Select;
using store_test::TextElem;

ElemStru DrawingFile() {
  ElemStru elem;
  elem.elem_type = kElemCustom;
  DrawingMsgStru& d = elem.drawing;
  d.msgType = kDrawingMsgFile;
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
  return elem;
}

struct KindCase {
  ElemStru elem;
  // The info columns stored, | between them: * for any non-empty value,
  // nullptr for no row at all.
  const char* info;
};

// Every stored field of every kind holds something distinct.
std::deque<KindCase> KindCases() {
  std::deque<KindCase> cases;
  auto add = [&cases](int32_t kind, const char* info) -> ElemStru& {
    cases.push_back({ElemStru(), info});
    cases.back().elem.elem_type = kind;
    return cases.back().elem;
  };
  add(kElemText, "*").text = u"h\u00E9llo \u4F60\u597D 'q' \\ \U0001F600";
  add(kElemLocalNotice, "*").text = u"\u53D1\u9001\u5931\u8D25";
  ElemStru& image = add(kElemImage, "*|*|*|*|*|*|-7|*|*|*");
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
  ElemStru& sound = add(kElemSound, "*|*|12");
  sound.file_id = u"s1";
  sound.download_param = "{\"s\":1}";
  sound.file_time = 12;
  cases.push_back({DrawingFile(), "1|41|*|*|*|-2|*|*|4|1700000000123|6|*"});
  DrawingMsgStru& shared = add(kElemCustom, "2|*|*|4|6|*|1700000000123").drawing;
  shared.msgType = kDrawingMsgSharedChat;
  shared.fromUserName = u"Alice";
  shared.fromUserId = u"alice";
  shared.subType = 4;
  shared.type = 6;
  shared.content = u"move 'x'";
  shared.ts = 1700000000123ULL;
  ElemStru& file = add(kElemFile, "*|*|*|-2147483643");
  file.file_path = u"/f/big.iso";
  file.file_name = u"big.iso";
  file.download_param = "{\"f\":1}";
  file.file_size = INT32_MIN + 5;  // a file over 2 GiB reads negative
  ElemStru& video = add(kElemVideo, "*|*|*|*");
  video.video_id = u"v1";
  video.image_id = u"c1";
  video.download_param = "{\"v\":1}";
  video.image_download_param = "{\"c\":1}";
  add(kElemCustom, nullptr).drawing.msgType = kDrawingMsgUnknown;
  add(kElemCustom, nullptr).drawing.msgType = kDrawingMsgSyncInstruct;
  for (int32_t kind : {kElemGroupTips, kElemFace, kElemLocation, kElemGroupReport,
                       kElemFriendChange, kElemProfileChange, ElemType(12)}) {
    add(kind, nullptr);
  }
  return cases;
}

class MessageStoreTest : public ::testing::Test {
 protected:
  void SetUp() override { path_ = store_test::OpenFresh(db_); }
  std::vector<MessageStru> Query(const WString& conv, int limit) {
    std::vector<MessageStru> out;
    EXPECT_TRUE(db_.QueryCurrentConvMsg(conv, u"me", limit, out));
    return out;
  }

  std::string path_;
  CChatDb db_;
};

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
  EXPECT_EQ(Select(path_, "select loginUserId,kTIMMsgConvId,info1,info2 from MessageTbl;"),
            (Rows{{"me", "peer", "14", ""}}));
}

// The batch path binds values instead: its rows must be the ones the SQL text
// makes, down to the storage class of every value.
TEST_F(MessageStoreTest, EveryKindStoresItsColumnsAndReadsBackWhole) {
  std::deque<KindCase> cases = KindCases();
  std::vector<MessageStru> all;
  for (size_t i = 0; i < cases.size(); ++i) {
    const KindCase& c = cases[i];
    SCOPED_TRACE(testing::Message()
                 << "kind " << c.elem.elem_type << "/" << c.elem.drawing.msgType);
    MessageStru& message =
        all.emplace_back(MessageWith(u"c'" + WString(1, u'a' + i), i, 7, c.elem));
    message.conv_type = 2;
    message.is_from_self = message.elems[0].is_from_self = true;
    message.status = 3;
    message.platform = message.elems[0].platform = 9;
    message.sender_profile = {u"\u5F20\u4E09", u"http://face/\u5F20.png"};
    db_.SaveMessage(u"me", message);

    Rows stored = Select(path_,
                         "select info1,info2,info3,info4,info5,info6,info7,info8,info9,info10,"
                         "info11,info12 from MessageTbl where kTIMMsgUniqueId=" +
                             std::to_string(i) + ";");
    std::vector<MessageStru> read = Query(message.conv_id, 5);
    ASSERT_EQ(stored.size(), c.info ? 1u : 0u);
    ASSERT_EQ(read.size(), c.info ? 1u : 0u);
    if (c.info == nullptr) continue;
    std::vector<std::string> want(12);
    std::stringstream pattern(c.info);
    for (size_t column = 0; std::getline(pattern, want[column], '|'); ++column) {
      if (want[column] == "*" && !stored[0][column].empty()) stored[0][column] = "*";
    }
    EXPECT_EQ(stored[0], want);
    EXPECT_EQ(read[0], message);
  }
  all.push_back(MessageWith(u"c", ULLONG_MAX, ULLONG_MAX, TextElem(u"huge numbers")));
  all.back().conv_type = UINT32_MAX;
  db_.SaveMessage(u"me", all.back());
  CChatDb batch;
  std::string batchPath = store_test::OpenFresh(batch);
  batch.SaveMessageList(u"me", all);
  std::string sql = "select " +
                    Select(path_,
                           "select group_concat('quote(' || name || ')') from "
                           "pragma_table_info('MessageTbl');")[0][0] +
                    " from MessageTbl order by id;";
  Rows single = Select(path_, sql);
  EXPECT_EQ(single.size(), 9u);
  EXPECT_EQ(Select(batchPath, sql), single);
}

TEST_F(MessageStoreTest, OneRowPerMessage) {
  MessageStru textAndImage = MessageWith(u"c", 5, 50, TextElem(u"first"));
  textAndImage.elems.push_back(ElemStru());
  textAndImage.elems.back().elem_type = kElemImage;
  db_.SaveMessage(u"me", textAndImage);
  // Stored again with other content: the first row stays as it was.
  db_.SaveMessage(u"me", MessageWith(u"c", 5, 99, TextElem(u"second")));
  db_.SaveMessageList(u"me", {MessageWith(u"c", 5, 98, TextElem(u"third"))});
  // A notice replaces the elements of the message it is about.
  textAndImage.unique_id = 6;
  textAndImage.server_time = 60;
  db_.SaveLocalNotice(u"me", textAndImage, u"\u7FA4\u540D\"x\"");

  std::vector<MessageStru> read = Query(u"c", 100);
  ASSERT_EQ(read.size(), 2u);
  ASSERT_EQ(read[0].elems.size(), 1u);
  EXPECT_EQ(read[0].unique_id, 6u);
  EXPECT_EQ(read[0].elems[0].elem_type, kElemLocalNotice);
  EXPECT_EQ(read[0].elems[0].text, u"\u7FA4\u540D\"x\"");
  ASSERT_EQ(read[1].elems.size(), 1u);
  EXPECT_EQ(read[1].server_time, 50u);
  EXPECT_EQ(read[1].elems[0].text, u"first");
}

TEST_F(MessageStoreTest, QueryReturnsTheNewestFirst) {
  db_.SaveMessageList(u"me", {MessageWith(u"c", 1, 10, TextElem(u"ten")),
                              MessageWith(u"c", 2, 30, TextElem(u"thirty")),
                              MessageWith(u"c", 3, 20, TextElem(u"twenty"))});
  std::vector<MessageStru> newest = Query(u"c", 1);
  ASSERT_EQ(newest.size(), 1u);
  EXPECT_EQ(newest[0].elems[0].text, u"thirty");
  std::vector<uint64_t> times;
  for (const MessageStru& m : Query(u"c", 10)) times.push_back(m.server_time);
  EXPECT_EQ(times, (std::vector<uint64_t>{30, 20, 10}));
}

TEST_F(MessageStoreTest, UpdateDrawingPathPointsTheRowAtTheLocalCopy) {
  const ElemStru drawing = DrawingFile();
  db_.SaveMessage(u"me", MessageWith(u"c", 1ULL << 40, 1, drawing));
  db_.SaveMessage(u"me", MessageWith(u"c", 2, 2, drawing));
  db_.UpdateDrawingPath(1ULL << 40, u"/home/u/\u56FE\u7EB8.dwg");
  std::vector<MessageStru> read = Query(u"c", 10);
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0].elems[0].drawing.filePath, u"/tmp/plan.dwg");  // unique id 2, newer
  EXPECT_EQ(read[1].elems[0].drawing.filePath, u"/home/u/\u56FE\u7EB8.dwg");
}

// Ids of 2^63 and above stay distinct rows and read back exactly, by both
// write paths, and the drawing-path update finds them.
TEST_F(MessageStoreTest, UniqueIdsOfTwoToTheSixtyThreeAndAboveKeepEveryBit) {
  const uint64_t ids[] = {1ULL << 63, (1ULL << 63) + 1, UINT64_MAX, (1ULL << 63) - 1};
  db_.SaveMessage(u"me", MessageWith(u"c", ids[0], 1, DrawingFile()));
  db_.SaveMessage(u"me", MessageWith(u"c", ids[1], 2, DrawingFile()));
  db_.SaveMessageList(u"me", {MessageWith(u"c", ids[2], 3, DrawingFile()),
                              MessageWith(u"c", ids[3], 4, DrawingFile())});
  db_.UpdateDrawingPath(ids[1], u"/local.dwg");
  std::vector<MessageStru> read = Query(u"c", 10);
  ASSERT_EQ(read.size(), 4u);
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(read[3 - i].unique_id, ids[i]) << i;
    EXPECT_EQ(read[3 - i].elems[0].drawing.filePath, i == 1 ? u"/local.dwg" : u"/tmp/plan.dwg");
  }
}

}  // namespace

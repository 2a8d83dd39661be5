#include "records/message_summary.h"

#include <gtest/gtest.h>

#include "records/message_parser.h"

namespace {

ElemStru Kind(int32_t type, uint32_t msg_type = 0) {
  return ElemStru{.elem_type = type, .text = WString(u"t"), .drawing = {.msgType = msg_type}};
}

TEST(MessageSummary, TextPerKind) {
  // Kinds -1 to 12; custom elements go by their msgType instead.
  const WString by_kind[] = {u"", u"t", u"[图片]",     u"[声音]", u"", u"[文件]", u"[系统消息]",
                             u"", u"",  u"[系统通知]", u"[视频]", u"", u"",       u""};
  for (int32_t kind = kElemLocalNotice; kind <= 12; ++kind) {
    if (kind == kElemCustom) continue;
    EXPECT_EQ(MessageSummaryText(Kind(kind)), by_kind[kind + 1]) << "kind " << kind;
  }
  const WString by_msg_type[] = {u"[自定义元素]", u"[图纸]", u"[聊图消息]", u"[自定义元素]"};
  for (uint32_t msg_type = 0; msg_type < 4; ++msg_type) {
    EXPECT_EQ(MessageSummaryText(Kind(kElemCustom, msg_type)), by_msg_type[msg_type]) << msg_type;
  }
}

TEST(MessageSummary, LastElementWinsInAList) {
  std::vector<MessageStru> list;
  ASSERT_TRUE(records::ParseMessageArray(
      R"([{"message_elem_array":[{"elem_type":0,"text_elem_content":"first"},
           {"elem_type":1,"image_elem_orig_id":"i"},
           {"elem_type":0,"text_elem_content":"last"}]}])",
      list));
  WString last_text;
  for (const ElemStru& e : list.at(0).elems) last_text = MessageSummaryText(e);
  EXPECT_EQ(last_text, u"last");
}

TEST(GroupChangeReminder, NameAndOwnerChanges) {
  ElemStru tips;
  tips.elem_type = kElemGroupTips;
  tips.tip_type = kGroupTipInfoChanged;
  tips.group_changes = {{.flag = kGroupChangeName, .value = u"设计组"},
                        {.flag = 5, .value = u"me"}};
  auto reminder = records::GroupChangeReminderFor(tips, u"me");
  ASSERT_TRUE(reminder);
  EXPECT_EQ(reminder->text, u"群名称修改为\"设计组\"");
  EXPECT_EQ(reminder->new_group_name, u"设计组");

  tips.group_changes = {{.flag = kGroupChangeOwner, .value = u"me"}};
  reminder = records::GroupChangeReminderFor(tips, u"me");
  ASSERT_TRUE(reminder);
  EXPECT_EQ(reminder->text, u" \"你\" 已成为群主。");
  EXPECT_EQ(reminder->text.size(), 11u);
  EXPECT_FALSE(reminder->new_group_name);

  EXPECT_FALSE(records::GroupChangeReminderFor(tips, u"someone else"));
  tips.tip_type = 5;
  EXPECT_FALSE(records::GroupChangeReminderFor(tips, u"me"));
  tips.tip_type = kGroupTipInfoChanged;
  tips.group_changes.clear();
  EXPECT_FALSE(records::GroupChangeReminderFor(tips, u"me"));
}

}  // namespace

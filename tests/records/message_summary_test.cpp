#include "records/message_summary.h"

#include <gtest/gtest.h>

#include "records/message_parser.h"

namespace {

ElemStru Kind(int32_t type, uint32_t msg_type = 0) {
  return ElemStru{.elem_type = type, .text = WString(u"t"), .drawing = {.msgType = msg_type}};
}

TEST(MessageSummary, TextPerKind) {
  const std::pair<ElemStru, WString> cases[] = {
      {Kind(kElemText), u"t"},
      {Kind(kElemImage), u"[图片]"},
      {Kind(kElemSound), u"[声音]"},
      {Kind(kElemCustom, 1), u"[图纸]"},
      {Kind(kElemCustom, 2), u"[聊图消息]"},
      {Kind(kElemCustom, 3), u"[自定义元素]"},
      {Kind(kElemCustom, 0), u"[自定义元素]"},
      {Kind(kElemFile), u"[文件]"},
      {Kind(kElemGroupTips), u"[系统消息]"},
      {Kind(kElemFace), u""},
      {Kind(kElemLocation), u""},
      {Kind(kElemGroupReport), u"[系统通知]"},
      {Kind(kElemVideo), u"[视频]"},
      {Kind(kElemFriendChange), u""},
      {Kind(kElemProfileChange), u""},
      {Kind(12), u""},
      {Kind(kElemLocalNotice), u""},
  };
  for (const auto& [elem, text] : cases) {
    EXPECT_EQ(MessageSummaryText(elem), text) << "kind " << elem.elem_type;
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

#include "records/message_summary.h"

WString MessageSummaryText(const ElemStru& elem) {
  // Compared as unsigned, so the local notice (-1) falls past every kind.
  switch (static_cast<uint32_t>(elem.elem_type)) {
    case kElemText:
      return elem.text;
    case kElemImage:
      return u"[图片]";
    case kElemSound:
      return u"[声音]";
    case kElemCustom:
      if (elem.drawing.msgType == kDrawingMsgFile) return u"[图纸]";
      if (elem.drawing.msgType == kDrawingMsgSharedChat) return u"[聊图消息]";
      return u"[自定义元素]";
    case kElemFile:
      return u"[文件]";
    case kElemGroupTips:
      return u"[系统消息]";
    case kElemGroupReport:
      return u"[系统通知]";
    case kElemVideo:
      return u"[视频]";
    default:
      return WString();
  }
}

namespace records {

WString GroupNameChangedText(const WString& new_name) {
  return u"群名称修改为\"" + new_name + u"\"";
}

WString BecameOwnerText() {
  return u" \"你\" 已成为群主。";
}

std::optional<GroupChangeReminder> GroupChangeReminderFor(const ElemStru& elem,
                                                          const WString& self_id) {
  if (elem.elem_type != kElemGroupTips || elem.tip_type != kGroupTipInfoChanged ||
      elem.group_changes.empty()) {
    return std::nullopt;
  }
  const GroupTipGroupChangeInfoStru& change = elem.group_changes.front();
  if (change.flag == kGroupChangeName) {
    return GroupChangeReminder{GroupNameChangedText(change.value), change.value};
  }
  if (change.flag == kGroupChangeOwner && change.value == self_id) {
    return GroupChangeReminder{BecameOwnerText(), std::nullopt};
  }
  return std::nullopt;
}

}  // namespace records

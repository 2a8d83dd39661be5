#pragma once
// One-line texts derived from elements: the summary shown in the conversation
// list and the reminder lines of a group-information change.

#include <optional>

#include "platform/strings.h"
#include "records/elem_records.h"

// The summary of one element, e.g. "[图片]"; empty for kinds without one
// (face, location, friend and profile changes, local notices).
WString MessageSummaryText(const ElemStru& elem);

namespace records {

// 群名称修改为"<name>"
WString GroupNameChangedText(const WString& new_name);
// " "你" 已成为群主。" (with the leading blank)
WString BecameOwnerText();

// The reminder a group-information change (tip type 6) gives the receiving
// side, from the first changed item: a name change (new_group_name set) or
// the signed-in user becoming owner. Nothing for any other element.
struct GroupChangeReminder {
  WString text;
  std::optional<WString> new_group_name;
};
std::optional<GroupChangeReminder> GroupChangeReminderFor(const ElemStru& elem,
                                                          const WString& self_id);

}  // namespace records

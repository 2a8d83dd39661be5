#include "ui/main/unread_dots.h"

namespace ui::main {
namespace {

constexpr std::string_view kStateImages[] = {"normalimage", "hotimage", "pushedimage"};

}  // namespace

void SetDot(const Control& control, std::string_view dot, bool shown) {
  Control target = control;  // SetAttribute is not const
  for (std::string_view slot : kStateImages) target.SetAttribute(slot, shown ? dot : "");
}

bool HasDot(const Control& control) {
  return !control.GetAttribute("normalimage").empty();
}

void SetRowDot(RowList& list, int row, std::string_view control, std::string_view dot, bool shown) {
  WString value = shown ? platform::Utf8ToUtf16(dot) : WString();
  for (std::string_view slot : kStateImages) list.Set(row, control, slot, value);
}

void SetPageButtonImages(const Control& recentConverBtn, const Control& friendsListBtn,
                         bool conversationsPage) {
  Control recent = recentConverBtn;
  Control friends = friendsListBtn;
  friends.SetAttribute("bkimage", conversationsPage ? "..\\img\\FriendsList_normal.png"
                                                    : "..\\img\\FriendsList_selected.png");
  recent.SetAttribute("bkimage", conversationsPage ? "..\\img\\RecentConver_selected.png"
                                                   : "..\\img\\RecentConver_normal.png");
}

}  // namespace ui::main

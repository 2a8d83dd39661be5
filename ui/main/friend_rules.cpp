#include "ui/main/friend_rules.h"

#include "ui/main/conversation_rules.h"

namespace ui::main {
namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\u3000';
}

}  // namespace

std::vector<WString> FriendListRows(const std::vector<service::FriendListEntry>& friends,
                                    const WString& search) {
  std::vector<WString> rows;
  rows.reserve(friends.size() + 2);
  if (search.empty()) {
    rows.emplace_back(kNewFriendsId);
    rows.emplace_back(kGroupsId);
  }
  for (const service::FriendListEntry& f : friends) {
    if (MatchesSearch(f.displayName, search)) rows.push_back(f.id);
  }
  return rows;
}

ButtonLook RequestButtonLook(RequestState state) {
  switch (state) {
    case RequestState::kAccepted:
      return {u"已添加", u"#FF8F8F8F", u"#FF424C58", true};
    case RequestState::kPending:
      return {u"接受", u"#FFFFFFFF", u"#FF5DC8CD", true};
    case RequestState::kJustAccepted:
      break;
  }
  return {nullptr, u"#FF8D8D8D", u"#FF212830", false};
}

std::optional<WString> RemarkToCommit(const WString& current, const WString& edited) {
  size_t begin = 0;
  size_t end = edited.size();
  while (begin < end && IsBlank(edited[begin])) ++begin;
  while (end > begin && IsBlank(edited[end - 1])) --end;
  WString remark = edited.substr(begin, end - begin);
  if (remark == current) return std::nullopt;
  return remark;
}

WString DeleteFriendQuestion(const WString& displayName) {
  return u"将联系人 " + displayName + u" 删除，将同时删除与该联系人的聊天记录及图纸文件。";
}

}  // namespace ui::main

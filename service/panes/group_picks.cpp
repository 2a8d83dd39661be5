#include "service/panes/group_picks.h"

#include <algorithm>

namespace service {
namespace {

bool IsBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\u3000';
}

}  // namespace

std::vector<GroupPerson> FriendsNotInGroup(const std::vector<GroupPerson>& friends,
                                           const std::vector<GroupPerson>& members) {
  std::vector<GroupPerson> offered;
  for (const GroupPerson& person : friends) {
    bool member = std::any_of(members.begin(), members.end(),
                              [&](const GroupPerson& m) { return m.id == person.id; });
    if (!member) offered.push_back(person);
  }
  return offered;
}

std::vector<GroupPerson> MembersBesidesUser(const std::vector<GroupPerson>& members,
                                            const WString& userId) {
  std::vector<GroupPerson> offered;
  for (const GroupPerson& person : members) {
    if (person.id != userId) offered.push_back(person);
  }
  return offered;
}

WString CleanGroupName(const WString& typed) {
  size_t begin = 0;
  size_t end = typed.size();
  while (begin < end && IsBlank(typed[begin])) ++begin;
  while (end > begin && IsBlank(typed[end - 1])) --end;
  WString name = typed.substr(begin, end - begin);
  if (name.size() > kMaxGroupNameLength) {
    name.resize(kMaxGroupNameLength);
    // Never half a character.
    if (name.back() >= 0xD800 && name.back() <= 0xDBFF) name.pop_back();
  }
  return name;
}

WString DefaultGroupName(const WString& userName, const std::vector<GroupPerson>& chosen) {
  WString name = userName;
  size_t named = 0;
  for (const GroupPerson& person : chosen) {
    if (named == kNamedMembers) break;
    if (!name.empty()) name += u"、";
    name += person.name.empty() ? person.id : person.name;
    ++named;
  }
  return CleanGroupName(name);
}

}  // namespace service

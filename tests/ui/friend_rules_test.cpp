// The friends page's rules, by table.
#include <gtest/gtest.h>

#include "ui/main/friend_rules.h"

namespace {

using namespace ui::main;

service::FriendListEntry Friend(const WString& id, const WString& nickname, const WString& remark) {
  FriendsList_Stru f;
  f.identifier = id;
  f.profile.nick_name = nickname;
  f.remark = remark;
  return service::ListEntryOf(f);
}

TEST(FriendRules, FixedEntriesOnlyWithoutSearchAndTheRemarkIsWhatIsSearched) {
  std::vector<service::FriendListEntry> friends = {
      Friend(u"1", u"zhang", u"Boss"), Friend(u"2", u"li", u""), Friend(u"3", u"王工", u"")};
  struct Case {
    const char16_t* search;
    std::vector<WString> rows;
  } cases[] = {
      {u"", {u"-1", u"-2", u"1", u"2", u"3"}},
      {u"bo", {u"1"}},  // the remark hides the nickname
      {u"zh", {}},
      {u"BOSS", {u"1"}},
      {u"L", {u"2"}},
      {u"王", {u"3"}},
      {u"-1", {}},  // the fixed entries are no friends
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FriendListRows(friends, c.search), c.rows) << platform::Utf16ToUtf8(c.search);
  }
}

TEST(FriendRules, RequestButtonHasThreeLooks) {
  struct Case {
    RequestState state;
    const char16_t* text;
    std::u16string_view textColor;
    std::u16string_view backColor;
    bool enabled;
  } cases[] = {
      {RequestState::kAccepted, u"已添加", u"#FF8F8F8F", u"#FF424C58", true},
      {RequestState::kPending, u"接受", u"#FFFFFFFF", u"#FF5DC8CD", true},
      {RequestState::kJustAccepted, nullptr, u"#FF8D8D8D", u"#FF212830", false},
  };
  for (const Case& c : cases) {
    ButtonLook look = RequestButtonLook(c.state);
    EXPECT_EQ(std::u16string_view(look.text ? look.text : u"(unchanged)"),
              std::u16string_view(c.text ? c.text : u"(unchanged)"));
    EXPECT_EQ(look.textColor, c.textColor);
    EXPECT_EQ(look.backColor, c.backColor);
    EXPECT_EQ(look.enabled, c.enabled);
  }
}

TEST(FriendRules, RemarkIsTrimmedAndOnlyAChangeIsCommitted) {
  struct Case {
    const char16_t* current;
    const char16_t* edited;
    std::optional<WString> commit;
  } cases[] = {
      {u"Boss", u"Boss", std::nullopt},
      {u"Boss", u"  Boss\t", std::nullopt},
      {u"Boss", u"老板", u"老板"},
      {u"", u"\u3000张工 ", u"张工"},
      {u"Boss", u"", u""},  // cleared: the nickname shows again
      {u"", u"   ", std::nullopt},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(RemarkToCommit(c.current, c.edited), c.commit) << platform::Utf16ToUtf8(c.edited);
  }
}

}  // namespace

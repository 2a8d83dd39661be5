// The friend directory's lookups stay right as the list changes under them.
#include <gtest/gtest.h>

#include "service/parts/friend_directory.h"

namespace {

FriendsList_Stru Friend(const char16_t* id, const char16_t* remark) {
  FriendsList_Stru f;
  f.identifier = id;
  f.remark = remark;
  return f;
}

TEST(FriendDirectory, FindsByIdAfterReplacingRemovingAndClearing) {
  service::FriendDirectory directory;
  directory.ReplaceFriends(
      {Friend(u"a", u"first"), Friend(u"b", u"b"), Friend(u"a", u"second"), Friend(u"c", u"c")});
  EXPECT_EQ(directory.FindFriend(u"a")->remark, u"first");  // a repeated id: the first
  directory.RemoveFriends({u"b"});
  ASSERT_TRUE(directory.FindFriend(u"c"));
  EXPECT_EQ(directory.FindFriend(u"c")->identifier, u"c");  // moved up by one
  EXPECT_FALSE(directory.FindFriend(u"b"));
  directory.RemoveFriends({u"a"});
  EXPECT_FALSE(directory.FindFriend(u"a"));
  EXPECT_EQ(directory.FindFriend(u"c")->identifier, u"c");
  directory.Clear();
  EXPECT_FALSE(directory.FindFriend(u"c"));
}

}  // namespace

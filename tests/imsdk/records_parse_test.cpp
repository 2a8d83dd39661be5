// The engine's JSON read back with the module's record parsers.
#include <fstream>

#include "platform/strings.h"
#include "records/conversation_parser.h"
#include "records/group_parser.h"
#include "records/message_parser.h"
#include "records/profile_parser.h"
#include "tests/imsdk/sdk_fixture.h"

namespace imsdk_test {
namespace {

using platform::W;

class RecordsParseTest : public SdkTest {
 protected:
  void SetUp() override {
    SdkTest::SetUp();
    control.CreateAccount("bob", {"Bob", "http://f/b", kTIMAddPermission_NeedConfirm, ""});
    SignIn("alice");
    control.MakeFriends("alice", "bob");
  }
};

TEST_F(RecordsParseTest, MessagesConversationsFriendsPendenciesAndTips) {
  std::string doc = Scratch("plan.dwg");
  std::ofstream(doc, std::ios::binary) << std::string(777, 'x');
  uint64_t text_id = 0;
  ASSERT_EQ(control.SendText("bob", 1, "alice", "你好", &text_id), 0);
  ASSERT_EQ(control.SendFile("bob", 1, "alice", doc), 0);
  auto pushed = rec.WaitFor("new_msg", 2);
  std::vector<MessageStru> messages;
  ASSERT_TRUE(records::ParseMessageArray(pushed[0].json, messages));
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].conv_id, W("bob"));
  EXPECT_EQ(messages[0].conv_type, 1u);
  EXPECT_EQ(messages[0].unique_id, text_id);
  EXPECT_EQ(messages[0].sender_profile.nick_name, W("Bob"));
  ASSERT_EQ(messages[0].elems.size(), 1u);
  EXPECT_EQ(messages[0].elems[0].text, W("你好"));
  messages.clear();
  ASSERT_TRUE(records::ParseMessageArray(pushed[1].json, messages));
  EXPECT_EQ(messages[0].elems[0].file_name, W("plan.dwg"));
  EXPECT_EQ(messages[0].elems[0].file_size, 777);

  std::vector<ConversationInfo_Stru> convs;
  ASSERT_TRUE(records::ParseConversationArray(Call("convs", TIMConvGetConvList).json, convs));
  ASSERT_EQ(convs.size(), 1u);
  EXPECT_EQ(convs[0].owner, W("alice"));
  EXPECT_EQ(convs[0].unread_num, 2u);
  EXPECT_EQ(convs[0].last_msg.elems[0].file_name, W("plan.dwg"));

  std::vector<FriendsList_Stru> friends;
  ASSERT_TRUE(
      records::ParseFriendArray(Call("friends", TIMFriendshipGetFriendProfileList).json, friends));
  ASSERT_EQ(friends.size(), 1u);
  EXPECT_EQ(friends[0].profile.face_url, W("http://f/b"));

  control.UpdateProfile("alice", {"alice", "", kTIMAddPermission_NeedConfirm, ""});
  control.CreateAccount("carol", {"Carol", "", kTIMAddPermission_NeedConfirm, ""});
  control.RequestFriend("carol", "alice", "hi");
  PendencyPage page;
  ASSERT_TRUE(
      records::ParsePendencyPage(CallJson("pend", TIMFriendshipGetPendencyList,
                                          R"({"friendship_get_pendency_list_param_type":0})"),
                                 page));
  ASSERT_EQ(page.pendencies.size(), 1u);
  EXPECT_EQ(page.pendencies[0].identifier, W("carol"));
  EXPECT_EQ(page.pendencies[0].nick_name, W("Carol"));

  std::string gid = control.CreateGroup("bob", "Old", {"alice"});
  control.RenameGroup("bob", gid, "New");
  auto tips = rec.WaitFor("group_tips", 2);
  GroupTipsEvent event;
  ASSERT_TRUE(records::ParseGroupTipsEvent(Parse(tips[1].json), event));
  EXPECT_EQ(event.tip_type, 6u);
  ASSERT_EQ(event.group_changes.size(), 1u);
  EXPECT_EQ(event.group_changes[0].flag, 1u);
  EXPECT_EQ(event.group_changes[0].value, W("New"));
}

}  // namespace
}  // namespace imsdk_test

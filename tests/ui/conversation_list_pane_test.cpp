// The conversation list pane on the real skin, driven by a source in memory.
#include <gtest/gtest.h>

#include "service/current_conversation.h"
#include "tests/ui/fake_conversation_source.h"
#include "tests/ui/recording_navigation.h"
#include "tests/ui/test_window.h"
#include "ui/main/conversation_list_pane.h"
#include "ui/main/unread_dots.h"

namespace {

using ui::main::ConversationListPane;
using ui::test::FakeConversationSource;

using Navigation = ui::test::RecordingNavigation;

class ConversationListPaneTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(window_.Create(nullptr, u"test"));
    controls_.LookUp(window_);
    pane_.SetUp();
    pane_.SetClock([] { return std::time_t{1700000000}; });
    source_.AddConversation(u"10002", 1, u"王工");
    source_.AddConversation(u"@TGS#1", 2, u"图纸评审组", 3);
    source_.AddConversation(u"10003", 1, u"xABy");
    source_.unread = {u"10002", u"@TGS#1"};
  }
  void TearDown() override {
    service::ForgetCurrentConversation();
    window_.Close();
    ui::test::Pump(10);
  }
  ui::RowList& Rows() { return pane_.rows(); }
  bool DotOn(const WString& id) {
    int row = Rows().Find(id);
    return row >= 0 && !Rows().Get(row, "ConverItem_logo", "normalimage").empty();
  }
  size_t Posted(unsigned msg) {
    return std::count_if(window_.messages.begin(), window_.messages.end(),
                         [&](const platform::WindowMessage& m) { return m.msg == msg; });
  }

  ui::test::RecordingWindow window_{"IMWnd.xml", "DuiLibRes\\skin\\"};
  ui::main::MainControls controls_;
  FakeConversationSource source_;
  Navigation navigation_;
  ConversationListPane pane_{window_, controls_, source_, navigation_};
};

TEST_F(ConversationListPaneTest, RebuildFillsRowsInOrderFilteredByTheUpperCasedSearchText) {
  source_.conversations[0].info.has_last_msg = true;
  ElemStru first, second, image;
  first.text = u"第一段";
  second.text = u"第二段";
  image.elem_type = kElemImage;
  source_.conversations[0].info.last_msg.elems = {first, image, second};
  service::SetCurrentConversation(u"@TGS#1", 2);  // open: no dot, read
  pane_.UpdateRencentConvList();
  ASSERT_EQ(Rows().Count(), 3);
  EXPECT_EQ(Rows().UserData(0), u"10002");
  EXPECT_EQ(Rows().Get(0, "ConverItem_nickname", "text"), u"王工");
  EXPECT_EQ(Rows().Get(0, "ConverItem_description", "text"), u"第二段");
  EXPECT_EQ(Rows().Get(0, "ConverItem_description", "userdata"), u"10002");
  EXPECT_EQ(Rows().Get(0, "ConverItem_logo", "bkimage"), u"..\\img\\PersonDefaultImg.png");
  EXPECT_TRUE(DotOn(u"10002"));
  EXPECT_FALSE(DotOn(u"@TGS#1"));
  EXPECT_EQ(source_.unread.count(u"@TGS#1"), 0u);
  EXPECT_FALSE(DotOn(u"10003"));

  controls_.searchEdit.SetText(u"ab");
  pane_.UpdateRencentConvList();
  ASSERT_EQ(Rows().Count(), 1);
  EXPECT_EQ(Rows().UserData(0), u"10003");
  EXPECT_EQ(Rows().Find(u"10002"), -1);
}

TEST_F(ConversationListPaneTest, LeftPageFollowsWhetherThereAreConversations) {
  source_.conversations.clear();
  pane_.UpdateRencentConvList();
  EXPECT_EQ(controls_.tabs.GetCurSel(), ui::main::kNoConversationsPage);
  source_.AddConversation(u"10002", 1, u"王工");
  pane_.UpdateRencentConvList();
  EXPECT_EQ(controls_.tabs.GetCurSel(), ui::main::kConversationsPage);
  source_.signedIn = false;
  source_.conversations.clear();
  pane_.UpdateRencentConvList();
  EXPECT_EQ(controls_.tabs.GetCurSel(), ui::main::kConversationsPage);
}

TEST_F(ConversationListPaneTest, OpeningAGroupReadsItAndInsertingMovesItToTheTopWithoutADot) {
  pane_.UpdateRencentConvList();
  int row = Rows().Find(u"@TGS#1");
  ASSERT_GE(row, 0);
  pane_.OpenConversation(u"missing");
  EXPECT_TRUE(navigation_.calls.empty());

  pane_.OpenConversation(u"@TGS#1");
  EXPECT_EQ(service::CurrentConvId(), u"@TGS#1");
  EXPECT_EQ(service::CurrentConvType(), 2u);
  EXPECT_EQ(service::CurrentPeerId(), u"@TGS#1");
  EXPECT_EQ(controls_.sessionName.GetText(), u"图纸评审组");
  EXPECT_EQ(source_.unread.count(u"@TGS#1"), 0u);
  EXPECT_EQ(source_.calls, std::vector<std::string>{"ReadGroup @TGS#1 3"});
  ASSERT_EQ(navigation_.calls.size(), 1u);
  EXPECT_EQ(navigation_.calls[0].mode, 0);

  pane_.InsertConverToConverList(u"@TGS#1", 2);
  EXPECT_EQ(source_.Order().front(), u"@TGS#1");
  EXPECT_EQ(controls_.chatModule.GetCurSel(), ui::main::kChatPage);
  EXPECT_TRUE(ui::test::PumpUntil([&] { return Posted(3184) == 1; }));
  pane_.UpdateRencentConvList();
  EXPECT_EQ(Rows().UserData(0), u"@TGS#1");
  EXPECT_FALSE(DotOn(u"@TGS#1"));
  EXPECT_EQ(Rows().Get(0, "ConverItem_Display_time", "text").size(), 5u);  // HH:MM: now
}

TEST_F(ConversationListPaneTest, DeleteActsOnTheOpenConversationOnly) {
  controls_.chatModule.SelectItem(ui::main::kChatPage);
  pane_.DeleteOpenConversation();  // nothing open
  EXPECT_TRUE(source_.calls.empty());
  EXPECT_EQ(source_.conversations.size(), 3u);
  EXPECT_EQ(controls_.chatModule.GetCurSel(), ui::main::kEmptyChatPage);

  service::SetCurrentPeerId(u"10003");
  pane_.DeleteOpenConversation();
  EXPECT_EQ(source_.calls, std::vector<std::string>{"Delete 10003"});
  EXPECT_EQ(service::CurrentPeerId(), u"");
}

TEST_F(ConversationListPaneTest, RowUpdatesAndPageButtonDots) {
  pane_.UpdateRencentConvList();
  pane_.UpdateName(u"10002", u"王总");
  EXPECT_EQ(Rows().Get(Rows().Find(u"10002"), "ConverItem_nickname", "text"), u"王总");
  source_.conversations[0].picture = u"/faces/10002.png";
  pane_.UpdatePicture(u"10002");
  EXPECT_EQ(Rows().Get(0, "ConverItem_logo", "bkimage"), u"/faces/10002.png");
  EXPECT_TRUE(DotOn(u"10002"));
  pane_.ClearDot(u"10002");
  EXPECT_FALSE(DotOn(u"10002"));
  EXPECT_EQ(source_.unread.count(u"10002"), 0u);
  pane_.UpdateName(u"unknown", u"x");  // no row: nothing happens

  pane_.MarkConversationsButton();  // its page is chosen: no dot
  EXPECT_FALSE(ui::main::HasDot(controls_.recentConverBtn));
  pane_.MarkFriendsButton();
  EXPECT_TRUE(ui::main::HasDot(controls_.friendsListBtn));
  source_.networkDown = true;
  pane_.ShowFriendsPage();
  EXPECT_FALSE(ui::main::HasDot(controls_.friendsListBtn));
  EXPECT_EQ(controls_.tabs.GetCurSel(), ui::main::kNetworkDownPage);
  EXPECT_EQ(controls_.friendsListBtn.GetAttribute("bkimage"), u"..\\img\\FriendsList_selected.png");
  source_.networkDown = false;
  pane_.ShowConversationsPage();
  EXPECT_EQ(controls_.tabs.GetCurSel(), ui::main::kConversationsPage);
  EXPECT_EQ(controls_.chatModule.GetCurSel(), ui::main::kEmptyChatPage);
  EXPECT_EQ(controls_.recentConverBtn.GetAttribute("bkimage"),
            u"..\\img\\RecentConver_selected.png");
}

}  // namespace

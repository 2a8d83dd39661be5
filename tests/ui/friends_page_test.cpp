// The friends page on the real skin, driven by sources in memory.
#include <gtest/gtest.h>

#include "service/current_conversation.h"
#include "service/posting.h"
#include "tests/ui/fake_conversation_source.h"
#include "tests/ui/fake_friend_sources.h"
#include "tests/ui/recording_navigation.h"
#include "tests/ui/test_window.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/row_list_view.h"
#include "ui/main/friends_page.h"
#include "ui/main/unread_dots.h"

namespace {

using ui::main::FriendsPage;

using Navigation = ui::test::RecordingNavigation;

class FriendsPageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(window_.Create(nullptr, u"test"));
    controls_.LookUp(window_);
    conversations_.SetUp();
    page_.SetUp();
    page_.SetClock([] { return std::time_t{1700000000}; });
    controls_.chatModule.SelectItem(ui::main::kEmptyChatPage);
    sources_.AddFriend(u"10002", u"zhang", u"Boss");
    sources_.AddFriend(u"10003", u"li");
  }
  void TearDown() override {
    service::ForgetCurrentConversation();
    window_.Close();
    ui::test::Pump(10);
  }
  // A row's item, bound to the row as it is while a notification about it runs.
  static ui::Control Item(ui::RowList& rows, const WString& id) {
    auto* view = qobject_cast<ui::qt::RowListView*>(ui::qt::WidgetOf(rows.control()));
    int row = rows.Find(id);
    return row < 0 ? ui::Control() : ui::qt::MakeControl(view->BindStamp(row, 250));
  }
  ui::RowList& Friends() { return page_.friends().rows(); }
  WString FriendText(const WString& id) {
    return Friends().Get(Friends().Find(id), "friend_list_nickname", "text");
  }
  bool NewFriendDot() {
    return !Friends().Get(Friends().Find(u"-1"), "friend_list_Image", "normalimage").empty();
  }
  // The texts posted with 3149, freed here as the window would.
  std::vector<WString> RemarkPosts() {
    std::vector<WString> texts;
    for (const platform::WindowMessage& m : window_.messages) {
      if (m.msg == platform::msg::kFriendRemarkChanged) {
        texts.push_back(
            service::AdoptPostedSecond<platform::msg::kFriendRemarkChanged>(m.lParam)->value);
      }
    }
    window_.messages.clear();
    return texts;
  }
  ui::Control Find(const char* name) { return window_.FindControl(name); }

  ui::test::RecordingWindow window_{"IMWnd.xml", "DuiLibRes\\skin\\"};
  ui::main::MainControls controls_;
  ui::test::FakeConversationSource conversationSource_;
  ui::test::FakeFriendSources sources_;
  Navigation navigation_;
  ui::main::ConversationListPane conversations_{window_, controls_, conversationSource_,
                                                navigation_};
  std::vector<WString> asked_;
  bool answer_ = false;
  FriendsPage page_{window_,
                    controls_,
                    conversations_,
                    navigation_,
                    {sources_, sources_, sources_},
                    [this](const WString& title, const WString& text) {
                      asked_ = {title, text};
                      return answer_;
                    }};
};

TEST_F(FriendsPageTest, FixedEntriesComeFirstOnlyWithoutSearchAndCarryTheirOwnNames) {
  page_.UpdateFriendList();
  ASSERT_EQ(Friends().Count(), 4);
  EXPECT_EQ(Friends().UserData(0), u"-1");
  EXPECT_EQ(Friends().UserData(1), u"-2");
  EXPECT_EQ(Friends().Get(0, "FriendItemSelected", "name"), u"AddFriendRequire_NewFriendItem");
  EXPECT_EQ(Friends().Get(1, "friend_list_Image", "name"), u"AddFriendRequire_NewGroupImage");
  EXPECT_EQ(Friends().Get(1, "friend_list_Image", "mouse"), u"false");
  EXPECT_EQ(FriendText(u"-1"), u"新的朋友");
  EXPECT_EQ(FriendText(u"10002"), u"Boss");
  EXPECT_EQ(FriendText(u"10003"), u"li");
  EXPECT_EQ(Friends().Get(2, "FriendItemSelected", "name"), u"FriendItemSelected");
  EXPECT_EQ(Friends().Get(2, "friend_list_Image", "mouse"), u"true");

  controls_.searchEdit.SetText(u"bo");
  page_.UpdateFriendList();
  ASSERT_EQ(Friends().Count(), 1);
  EXPECT_EQ(Friends().UserData(0), u"10002");
  controls_.searchEdit.SetText(u"zh");
  page_.UpdateFriendList();
  EXPECT_EQ(Friends().Count(), 0);
}

TEST_F(FriendsPageTest, NewFriendDotFollowsUnreadRequestsUntilTheRequestsPageShows) {
  page_.RefreshRequests();  // 3166 while the empty page shows
  EXPECT_TRUE(sources_.requestsUnread);
  EXPECT_EQ(sources_.calls, std::vector<std::string>{"RefreshRequests"});
  page_.UpdateFriendList();
  EXPECT_TRUE(NewFriendDot());

  page_.SelectFriend(Item(Friends(), u"-1"));
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"-1", 1, 5}));
  EXPECT_EQ(sources_.calls.back(), "ReportRead 1700000000");
  controls_.chatModule.SelectItem(ui::main::kRequestsPage);  // as mode 5 does
  page_.RefreshNewFriendEntry();
  EXPECT_FALSE(NewFriendDot());
  EXPECT_FALSE(sources_.requestsUnread);
  page_.RefreshRequests();  // seen at once: no mark
  EXPECT_FALSE(sources_.requestsUnread);

  // A mark from before the list arrived goes when nothing waits.
  controls_.chatModule.SelectItem(ui::main::kEmptyChatPage);
  page_.RefreshRequests();
  page_.UpdateFriendList();
  ASSERT_TRUE(NewFriendDot());
  page_.DisplayFriendRequireList();
  EXPECT_FALSE(NewFriendDot());
}

TEST_F(FriendsPageTest, EntriesOpenTheirPagesTheCardOrTheChat) {
  page_.UpdateFriendList();
  page_.SelectFriend(Item(Friends(), u"-2"));
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"-2", 1, 6}));

  page_.SelectFriend(Item(Friends(), u"10002"));
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"10002", 1, 7}));
  EXPECT_TRUE(Find("IMWnd_FriendCard").IsVisible());
  EXPECT_FALSE(Find("IMWnd_EmptyText").IsVisible());
  EXPECT_EQ(Find("FriendList_Info_FriendName").GetText(), u"zhang");
  EXPECT_EQ(Find("FriendList_Info_RemarksLabel").GetText(), u"Boss");
  page_.UpdateFriendList();  // mode 7 rebuilds: the friend stays selected
  EXPECT_EQ(Friends().GetCurSel(), Friends().Find(u"10002"));

  page_.OpenChatWithShownFriend();
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"10002", 1, 2}));
  EXPECT_FALSE(Find("IMWnd_FriendCard").IsVisible());
  EXPECT_TRUE(Find("IMWnd_EmptyText").IsVisible());

  EXPECT_FALSE(page_.OnDoubleClick(Item(Friends(), u"-1")));
  EXPECT_TRUE(page_.OnDoubleClick(Item(Friends(), u"10003")));
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"10003", 1, 2}));
  size_t before = navigation_.calls.size();
  page_.SelectFriend(Find("SendMsgBtn"));  // not a row: nothing
  EXPECT_EQ(navigation_.calls.size(), before);
}

TEST_F(FriendsPageTest, GroupsShowTheOwnerMarkAndOpenTheirChat) {
  sources_.groups = {GroupInfo{u"@TGS#1", u"图纸评审组", u"", u"me"},
                     GroupInfo{u"@TGS#2", u"施工群", u"", u"other"}};
  page_.UpdateGroupList();
  ui::RowList& groups = page_.groups().rows();
  ASSERT_EQ(groups.Count(), 2);
  EXPECT_EQ(groups.Get(0, "GroupList_IsMaster", "text"), u"群主");
  EXPECT_EQ(groups.Get(1, "GroupList_IsMaster", "text"), u"");
  EXPECT_EQ(groups.Get(1, "GroupList_Nickname", "text"), u"施工群");
  page_.SelectGroup(Item(groups, u"@TGS#2"));
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"@TGS#2", 2, 2}));
  page_.RememberMenuTarget(Item(groups, u"@TGS#1"));
  page_.OpenGroupChat();
  EXPECT_EQ(navigation_.calls.back(), (Navigation::Call{u"@TGS#1", 2, 2}));
}

TEST_F(FriendsPageTest, RequestButtonLooksAndAcceptingOnlyAPendingRequestOnce) {
  sources_.AddRequest(u"20001", true);
  sources_.AddRequest(u"20002", false);
  sources_.AddRequest(u"20003", false);
  page_.DisplayFriendRequireList();
  ui::RowList& rows = page_.requests().rows();
  auto look = [&](const WString& id) {
    int row = rows.Find(id);
    return std::vector<WString>{rows.Get(row, "FriendRequire_ConfirmBtn", "text"),
                                rows.Get(row, "FriendRequire_ConfirmBtn", "bkcolor"),
                                rows.Get(row, "FriendRequire_ConfirmBtn", "enabled")};
  };
  EXPECT_EQ(look(u"20001"), (std::vector<WString>{u"已添加", u"#FF424C58", u"true"}));
  EXPECT_EQ(look(u"20002"), (std::vector<WString>{u"接受", u"#FF5DC8CD", u"true"}));
  EXPECT_EQ(rows.Get(1, "AddFriendRequire_NickName", "text"), u"name of 20002");

  page_.AcceptRequest(Item(rows, u"20001"));  // added already: nothing
  page_.AcceptRequest(Item(rows, u"20002"));
  page_.AcceptRequest(Item(rows, u"20002"));  // dark and disabled now
  EXPECT_EQ(sources_.calls, std::vector<std::string>{"Accept 20002"});
  EXPECT_EQ(look(u"20002"), (std::vector<WString>{u"接受", u"#FF212830", u"false"}));

  sources_.acceptTaken = false;  // refused: the user may try again
  page_.AcceptRequest(Item(rows, u"20003"));
  EXPECT_EQ(look(u"20003"), (std::vector<WString>{u"接受", u"#FF5DC8CD", u"true"}));

  // The answer was taken: the list shows it added and the friend appears.
  page_.RefetchProfiles();
  EXPECT_EQ(sources_.calls.back(), "RefreshFriends");
  sources_.AddFriend(u"20002", u"赵工");
  page_.DisplayFriendRequireList();
  page_.UpdateFriendList();
  EXPECT_EQ(look(u"20002"), (std::vector<WString>{u"已添加", u"#FF424C58", u"true"}));
  EXPECT_EQ(FriendText(u"20002"), u"赵工");
}

TEST_F(FriendsPageTest, DeleteAsksWithTheDisplayNameAndCancelKeepsTheFriend) {
  page_.UpdateFriendList();
  page_.SelectFriend(Item(Friends(), u"10002"));
  page_.DeleteShownFriend();
  EXPECT_EQ(asked_,
            (std::vector<WString>{
                u"删除好友", u"将联系人 Boss 删除，将同时删除与该联系人的聊天记录及图纸文件。"}));
  EXPECT_TRUE(sources_.calls.empty());
  EXPECT_TRUE(Find("IMWnd_FriendCard").IsVisible());

  answer_ = true;
  page_.DeleteShownFriend();
  EXPECT_EQ(sources_.calls, std::vector<std::string>{"Delete 10002"});
  EXPECT_FALSE(Find("IMWnd_FriendCard").IsVisible());

  asked_.clear();
  page_.RememberMenuTarget(Item(Friends(), u"10003"));
  sources_.friends.clear();  // gone meanwhile: nothing to ask
  page_.DeleteMenuFriend();
  EXPECT_TRUE(asked_.empty());
}

TEST_F(FriendsPageTest, RemarkCommitsOnceOnFocusLossOrEnterAndRenamesTheFriend) {
  page_.UpdateFriendList();
  page_.SelectFriend(Item(Friends(), u"10002"));
  ui::Control label = Find("FriendList_Info_RemarksLabel");
  ui::Control edit = Find("FriendList_Info_RemarksEdit");
  auto startEditing = [&](const WString& text) {
    label.SetVisible(false);
    edit.SetVisible(true);
    edit.SetText(text);
  };
  startEditing(u" 老板 ");
  page_.OnKillFocus(edit);
  page_.CommitRemarkEdit();  // closed already: no second change
  EXPECT_EQ(sources_.calls, std::vector<std::string>{"Remark 10002 老板"});
  EXPECT_EQ(label.GetText(), u"老板");
  EXPECT_TRUE(label.IsVisible());
  EXPECT_FALSE(edit.IsVisible());
  ui::test::Pump(10);
  EXPECT_EQ(RemarkPosts(), std::vector<WString>{u"老板"});

  service::SetCurrentConversation(u"10002", 1);
  page_.OnRemarkChanged(u"老板");
  EXPECT_EQ(FriendText(u"10002"), u"老板");
  EXPECT_EQ(controls_.sessionName.GetText(), u"老板");

  sources_.remarkResult = -1;  // the service refused: the card keeps the remark
  startEditing(u"X");
  page_.OnReturn(edit);
  EXPECT_EQ(sources_.calls.back(), "Remark 10002 X");
  EXPECT_EQ(label.GetText(), u"老板");
  ui::test::Pump(10);
  EXPECT_TRUE(RemarkPosts().empty());
}

}  // namespace

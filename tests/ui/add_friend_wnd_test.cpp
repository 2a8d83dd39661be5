// The add-friend dialog against a fake source, driven through its controls.
#include "ui/dialogs/add_friend_wnd.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "service/posting.h"
#include "tests/ui/test_window.h"
#include "ui/kit/control.h"

namespace {

using host::AccountActionResult;
using host::AccountSearchResult;
using platform::W;

class FakeSource final : public service::AddFriendSource {
 public:
  AccountSearchResult SearchAccount(const WString& account, host::AccountKind kind,
                                    AccountInfo& info) override {
    calls.push_back("search " + platform::Utf16ToUtf8(account) + " " +
                    std::to_string(static_cast<int>(kind)));
    if (searchResult == AccountSearchResult::kFound) info = found;
    return searchResult;
  }
  bool IsOwnAccount(const AccountInfo& info) const override { return info.accountId == 10001; }
  WString AvatarPicture(const AccountInfo&, platform::WindowHandle notify) override {
    avatarNotify = notify;
    return picture;
  }
  AccountActionResult ActOnAccount(const WString& account, host::AccountKind,
                                   const AccountInfo& info) override {
    calls.push_back("act " + platform::Utf16ToUtf8(account) + " " + std::to_string(info.relation));
    static constexpr AccountActionResult kByRelation[] = {
        AccountActionResult::kNone, AccountActionResult::kFriendRequestSent,
        AccountActionResult::kInvited, AccountActionResult::kAlreadyFriend};
    return info.relation >= 0 && info.relation <= 3 ? kByRelation[info.relation]
                                                    : AccountActionResult::kNone;
  }
  int RequestFriend(const WString&, const WString&, const WString&) override { return 0; }

  AccountSearchResult searchResult = AccountSearchResult::kFound;
  AccountInfo found;
  WString picture = u"..\\img\\PersonDefaultImg.png";
  platform::WindowHandle avatarNotify = platform::WindowHandle::kNone;
  std::vector<std::string> calls;
};

class AddFriendWndTest : public testing::Test {
 protected:
  void SetUp() override {
    source_.found.relation = 1;
    source_.found.accountId = 10004;
    source_.found.displayName = W("赵工");
    source_.found.imUserId = u"10004";
    ASSERT_TRUE(dialog_.CreateDialog(nullptr));
    dialog_.ShowWindow(true);
  }
  void TearDown() override {
    dialog_.Close();
    ui::test::PumpUntil([&] { return !dialog_.IsCreated(); });
  }
  template <class T = QWidget>
  T* Widget(const char* name) {
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->objectName() == "AddFriendWnd")
        if (auto* found = w->findChild<T*>(name)) return found;
    }
    ADD_FAILURE() << name;
    return nullptr;
  }
  void Type(const char* text) {
    QLineEdit* edit = Widget<QLineEdit>("EdSearch");
    edit->clear();
    QTest::keyClicks(edit, QString::fromUtf8(text));
  }
  void Search(const char* text) {
    Type(text);
    QTest::mouseClick(Widget<QAbstractButton>("BtnSearch"), Qt::LeftButton);
  }
  std::string Tips() { return Widget<QLabel>("Tips")->text().toStdString(); }
  std::string TipsColour() {
    return platform::Utf16ToUtf8(dialog_.FindControl("Tips").GetAttribute("textcolor"));
  }
  bool ResultShown() { return dialog_.FindControl("SearchResult").IsVisible(); }
  QAbstractButton* Action() { return Widget<QAbstractButton>("Add"); }

  FakeSource source_;
  AddFriendWnd dialog_{source_};
};

struct InputCase {
  const char* text;
  const char* status;
  size_t hostCalls;
};

TEST_F(AddFriendWndTest, BadInputIsRefusedInRedWithoutAskingTheHost) {
  for (InputCase c :
       {InputCase{"", "请输入查找的账号！", 0}, InputCase{"1380013800", "无效的手机号码！", 0},
        InputCase{"23800138000", "无效的手机号码！", 0}, InputCase{"a@b", "无效的邮箱！", 0}}) {
    Search(c.text);
    EXPECT_EQ(Tips(), c.status) << c.text;
    EXPECT_EQ(TipsColour(), "#FFFF0000") << c.text;
    EXPECT_TRUE(source_.calls.empty()) << c.text;
  }
  source_.searchResult = AccountSearchResult::kNotFound;
  Search("13800138000");
  EXPECT_EQ(Tips(), "查找失败，无此账号的用户！");
  EXPECT_EQ(TipsColour(), "#FFFF0000");
  EXPECT_FALSE(ResultShown());
  EXPECT_EQ(source_.calls, std::vector<std::string>{"search 13800138000 1"});
}

struct RelationCase {
  int relation;
  const char* button;
  bool enabled;
  const char* status;
  const char* afterAction;
};

TEST_F(AddFriendWndTest, EachRelationOffersItsActionOncePerSearch) {
  for (RelationCase c : {
           RelationCase{1, "添加好友", true, "点击添加好友按钮，添加好友！", "好友请求发送成功！"},
           RelationCase{2, "邀请好友", true, "点击邀请好友按钮邀请好友注册Plantyr！",
                        "已经发送邀请！"},
           RelationCase{3, "已是好友", false, "已经是好友,不能再添加好友！", nullptr},
       }) {
    source_.calls.clear();
    source_.found.relation = c.relation;
    Search("zhao@example.com");
    EXPECT_EQ(source_.calls, std::vector<std::string>{"search zhao@example.com 2"});
    EXPECT_EQ(Action()->text().toStdString(), c.button);
    EXPECT_EQ(Action()->isEnabled(), c.enabled);
    EXPECT_EQ(Tips(), c.status);
    EXPECT_EQ(TipsColour(), "#FF53CB4E");
    EXPECT_EQ(platform::Utf16ToUtf8(dialog_.FindControl("Add").GetAttribute("bkcolor")),
              c.enabled ? "#FF5DC8CD" : "#FF212830");
    EXPECT_TRUE(ResultShown());
    EXPECT_EQ(Widget<QLabel>("AddFriend_NickName")->text().toStdString(), "用户名: 赵工");
    if (!c.enabled) continue;
    QTest::mouseClick(Action(), Qt::LeftButton);
    EXPECT_EQ(Tips(), c.afterAction);
    EXPECT_EQ(source_.calls.back(), "act zhao@example.com " + std::to_string(c.relation));
    EXPECT_TRUE(Widget<QLineEdit>("EdSearch")->text().isEmpty());
    EXPECT_FALSE(Action()->isEnabled());
    EXPECT_EQ(platform::Utf16ToUtf8(dialog_.FindControl("Add").GetAttribute("textcolor")),
              "#FF8D8D8D");
  }
}

TEST_F(AddFriendWndTest, OwnAccountIsRefusedAndShown) {
  source_.found.accountId = 10001;
  source_.found.displayName = W("张明");
  Search("13800138000");
  EXPECT_EQ(Tips(), "不能添加自己为好友！");
  EXPECT_EQ(TipsColour(), "#FFFF0000");
  EXPECT_FALSE(Action()->isEnabled());
  EXPECT_TRUE(ResultShown());
}

TEST_F(AddFriendWndTest, TypingHidesTheResultAndReturnSearchesAgain) {
  Search("13800138000");
  ASSERT_TRUE(ResultShown());
  QTest::keyClick(Widget<QLineEdit>("EdSearch"), Qt::Key_1);
  EXPECT_FALSE(ResultShown());
  Type("13800138001");
  QTest::keyClick(Widget<QLineEdit>("EdSearch"), Qt::Key_Return);
  EXPECT_TRUE(ResultShown());
  EXPECT_EQ(source_.calls.back(), "search 13800138001 1");
}

// Without a host the search ends without a word; the last result is not
// acted on again.
TEST_F(AddFriendWndTest, NoHostEndsTheSearchSilentlyAndForgetsTheLastResult) {
  Search("13800138000");
  source_.searchResult = AccountSearchResult::kUnavailable;
  Search("13800138001");
  EXPECT_FALSE(ResultShown());
  source_.calls.clear();
  dialog_.SendNotify(dialog_.FindControl("Add"), ui::kNotifyClick);
  EXPECT_EQ(source_.calls, std::vector<std::string>{"act 13800138001 0"});
  EXPECT_FALSE(Action()->isEnabled());
}

// The avatar is fetched in the background: the default picture first, the
// real one when 3192 names the found account; one of another account is
// not shown over it.
TEST_F(AddFriendWndTest, AvatarArrivingLaterReplacesTheDefaultPicture) {
  Search("zhao@example.com");
  ASSERT_TRUE(ResultShown());
  auto header = [&] { return dialog_.FindControl("HeaderImg").GetAttribute("bkimage"); };
  EXPECT_EQ(header(), u"..\\img\\PersonDefaultImg.png");
  EXPECT_EQ(source_.avatarNotify, dialog_.GetHWND());

  const QString arrived = QString::fromStdString(testing::TempDir()) + "add_friend_zhao.png";
  QImage picture(8, 8, QImage::Format_ARGB32);
  picture.fill(Qt::darkCyan);
  ASSERT_TRUE(picture.save(arrived));
  source_.picture = platform::Utf8ToUtf16(arrived.toStdString());
  ASSERT_TRUE(service::PostPayload<platform::msg::kConversationLogoChanged>(
      dialog_.GetHWND(), service::kNoSession, WString(u"10009")));
  ui::test::Pump(100);
  EXPECT_EQ(header(), u"..\\img\\PersonDefaultImg.png");
  ASSERT_TRUE(service::PostPayload<platform::msg::kConversationLogoChanged>(
      dialog_.GetHWND(), service::kNoSession, WString(u"10004")));
  EXPECT_TRUE(ui::test::PumpUntil([&] { return header() == source_.picture; }));
}

}  // namespace

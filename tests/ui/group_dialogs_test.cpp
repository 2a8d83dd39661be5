// The group windows through their controls, against the local host and the
// engine: whom each picker offers, the panel, the cards; their chains and texts.
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "service/panes/group_source.h"
#include "tests/service/group_world.h"
#include "ui/dialogs/add_grou_member.h"
#include "ui/dialogs/create_group.h"
#include "ui/dialogs/delete_group_member.h"
#include "ui/dialogs/form_group_chat.h"
#include "ui/dialogs/group_function.h"
#include "ui/dialogs/transfer_manage.h"

namespace service_test {
namespace {

using platform::W;

class GroupDialogsTest : public GroupWorldTest {
 protected:
  void SetUp() override {
    GroupWorldTest::SetUp();
    engine.MakeFriends("10001", "10003");
    ASSERT_TRUE(SignIn());
    source_ = service::MakeGroupSource(*tools);
  }
  void TearDown() override {
    if (dialog_ != nullptr && dialog_->IsCreated()) dialog_->Close();
    Settle();
    dialog_.reset();
    source_.reset();
    GroupWorldTest::TearDown();
  }
  // Qt's events and the service's queue until nothing is left to do.
  void Settle() {
    for (int i = 0; i < 5; ++i) {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
      DrainNow();
    }
  }
  // Makes and shows the dialog (not modally: the test is its user).
  template <class Dialog, class... Args>
  Dialog& Open(Args&&... args) {
    if (dialog_ != nullptr && dialog_->IsCreated()) dialog_->Close();
    Settle();
    auto dialog = std::make_unique<Dialog>(*source_, std::forward<Args>(args)...);
    Dialog& made = *dialog;
    if constexpr (std::is_base_of_v<ui::MemberPicker, Dialog>) {
      picker_ = &made.picker();
    } else {
      picker_ = &made.members();
    }
    dialog_ = std::move(dialog);
    if (made.CreateDialog(nullptr)) made.ShowWindow(true);
    Settle();
    return made;
  }
  QWidget* Widget(const char* name) {
    QWidget* root = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->objectName() == QLatin1String(dialog_->Row().className) && w->isVisible()) root = w;
    }
    return root ? root->findChild<QWidget*>(name) : nullptr;
  }
  std::string Prefixed(const char* role) { return prefix_ + "_" + role; }
  // Clicks the row of `id` as the user would.
  void ClickRow(const WString& id) {
    auto* list =
        qobject_cast<QAbstractItemView*>(Widget(picker_->rows().control().GetName().c_str()));
    ASSERT_NE(list, nullptr);
    int row = picker_->rows().Find(id);
    ASSERT_GE(row, 0) << Utf8(id);
    QRect rect = list->visualRect(list->model()->index(row, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    Settle();
  }
  void Click(const std::string& name) {
    auto* button = qobject_cast<QAbstractButton*>(Widget(name.c_str()));
    ASSERT_NE(button, nullptr) << name;
    QTest::mouseClick(button, Qt::LeftButton);
    Settle();
  }
  void Confirm() { Click(Prefixed("ConfirmBtn")); }
  bool ConfirmEnabled() { return Widget(Prefixed("ConfirmBtn").c_str())->isEnabled(); }
  std::vector<std::string> Offered() {
    std::vector<std::string> ids;
    for (const service::GroupPerson& p : picker_->People()) ids.push_back(Utf8(p.id));
    return ids;
  }
  std::vector<std::string> Chosen() {
    std::vector<std::string> ids;
    for (const service::GroupPerson& p : picker_->Chosen()) ids.push_back(Utf8(p.id));
    return ids;
  }
  bool Open() { return dialog_->IsCreated(); }
  bool Shown(const char* name) {
    QWidget* widget = Widget(name);
    return widget != nullptr && widget->isVisibleTo(widget->window());
  }
  // The boxes since `from`, as "title|text".
  std::vector<std::string> BoxesSince(size_t from) {
    std::vector<std::string> texts;
    for (const Box& box : window.Boxes(from)) texts.push_back(Utf8(box.title + u"|" + box.text));
    return texts;
  }
  // The group the host made for `name`, once the service lists it.
  WString CreatedGroup(const WString& name) {
    WString id;
    PumpUntil([&] {
      for (const GroupInfo& group : tools->Groups()) {
        if (group.name == name) id = group.group_id;
      }
      return !id.empty();
    });
    return id;
  }

  std::unique_ptr<service::GroupSource> source_;
  std::unique_ptr<ui::DialogFrame> dialog_;
  ui::PersonPicker* picker_ = nullptr;
  std::string prefix_;
};

using Strings = std::vector<std::string>;

TEST_F(GroupDialogsTest, CreateGroupMakesTheCloudGroupThenTheChatGroup) {
  prefix_ = "CreateGroup";
  CreateGroup& dialog = Open<CreateGroup>();
  EXPECT_EQ(Offered(), (Strings{"10002", "10003"}));
  EXPECT_FALSE(ConfirmEnabled());
  ClickRow(u"10002");
  ClickRow(u"10003");
  ClickRow(u"10003");  // picked and unpicked
  EXPECT_EQ(Chosen(), Strings{"10002"});
  ClickRow(u"10003");
  ASSERT_TRUE(ConfirmEnabled());

  // The host refuses: told, nothing made, the dialog stays.
  host_.FailOperation("CreateCloudGroup");
  size_t boxes = window.Boxes().size();
  Confirm();
  EXPECT_EQ(BoxesSince(boxes), Strings{"错误|创建群失败。"});
  EXPECT_TRUE(Open());
  EXPECT_TRUE(tools->Groups().empty());

  host_.FailOperation("CreateCloudGroup", false);
  qobject_cast<QLineEdit*>(Widget("CreateGroup_NameEdit"))->setText(QStringLiteral(" 结构组 "));
  Confirm();
  EXPECT_TRUE(dialog.Succeeded());
  EXPECT_FALSE(Open());
  const WString group = CreatedGroup(u"结构组");
  ASSERT_FALSE(group.empty());
  EXPECT_EQ(engine.GroupOwner(Utf8(group)), "10001");
  EXPECT_EQ(engine.GroupMembers(Utf8(group)), (Strings{"10001", "10002", "10003"}));
  EXPECT_EQ(host_.FindGroup(group)->members.size(), 3u);
}

TEST_F(GroupDialogsTest, FormGroupChatStartsWithThePeerWhoStaysPicked) {
  prefix_ = "FormGroupChat";
  Open<CFormGroupChat>(u"10002");
  EXPECT_EQ(Chosen(), Strings{"10002"});
  EXPECT_TRUE(ConfirmEnabled());
  ClickRow(u"10002");
  EXPECT_EQ(Chosen(), Strings{"10002"});
  ClickRow(u"10003");
  Confirm();
  // Not named: named after the user and the first members.
  const WString group = CreatedGroup(u"host10001、nick10002、nick10003");
  ASSERT_FALSE(group.empty());
  EXPECT_EQ(engine.GroupMembers(Utf8(group)), (Strings{"10001", "10002", "10003"}));

  // Only a friend's chat becomes a group.
  Open<CFormGroupChat>(u"10004");
  EXPECT_FALSE(Open());
}

TEST_F(GroupDialogsTest, AddGrouMemberOffersFriendsNotInTheGroup) {
  prefix_ = "AddGroupMember";
  const WString group = MakeGroup("10002", {"10001"});
  Open<AddGrouMember>(group);
  EXPECT_EQ(Offered(), Strings{"10003"});
  ClickRow(u"10003");

  host_.FailOperation("AddGroupMembers");
  size_t boxes = window.Boxes().size();
  Confirm();
  EXPECT_EQ(BoxesSince(boxes), Strings{"错误|添加群成员失败!"});
  EXPECT_EQ(engine.GroupMembers(Utf8(group)), (Strings{"10002", "10001"}));

  host_.FailOperation("AddGroupMembers", false);
  Confirm();
  EXPECT_FALSE(Open());
  EXPECT_EQ(engine.GroupMembers(Utf8(group)), (Strings{"10002", "10001", "10003"}));

  // The group cannot be looked up: told in the picker's own words, closed.
  host_.FailOperation("GetGroupMembers");
  boxes = window.Boxes().size();
  Open<AddGrouMember>(group);
  EXPECT_EQ(BoxesSince(boxes), Strings{"查询群信息|查询群信息失败!"});
  EXPECT_FALSE(Open());
}

TEST_F(GroupDialogsTest, DeleteGroupMemberAsksAndOnlyTheOwnerRemoves) {
  prefix_ = "DeleteGroupMember";
  const WString theirs = MakeGroup("10002", {"10001", "10003"});
  Open<DeleteGroupMember>(theirs);
  EXPECT_EQ(Offered(), (Strings{"10002", "10003"}));  // the owner first, never the user
  ClickRow(u"10003");
  size_t boxes = window.Boxes().size();
  Confirm();
  EXPECT_EQ(BoxesSince(boxes),
            (Strings{"提示|是否要删除群成员!", "提示|非管理员不能删除群成员！！！"}));
  EXPECT_EQ(engine.GroupMembers(Utf8(theirs)), (Strings{"10002", "10001", "10003"}));
  EXPECT_TRUE(Open());

  const WString mine = MakeGroup("10001", {"10002", "10003"});
  Open<DeleteGroupMember>(mine);
  ClickRow(u"10002");
  window.confirm = false;  // the user says no
  Confirm();
  EXPECT_EQ(engine.GroupMembers(Utf8(mine)), (Strings{"10001", "10002", "10003"}));
  EXPECT_TRUE(Open());
  window.confirm = true;
  Confirm();
  EXPECT_EQ(engine.GroupMembers(Utf8(mine)), (Strings{"10001", "10003"}));
  EXPECT_EQ(host_.FindGroup(mine)->members.size(), 2u);
  EXPECT_FALSE(Open());
}

TEST_F(GroupDialogsTest, TransferManageMakesThePickedMemberTheOwnerOnBothSides) {
  prefix_ = "TransferManage";
  const WString group = MakeGroup("10001", {"10002", "10003"});
  Open<TransferManage>(group);
  EXPECT_EQ(Offered(), (Strings{"10002", "10003"}));
  ClickRow(u"10002");
  ClickRow(u"10003");  // one new owner only
  EXPECT_EQ(Chosen(), Strings{"10003"});

  window.confirm = false;
  size_t boxes = window.Boxes().size();
  Confirm();
  EXPECT_EQ(BoxesSince(boxes), Strings{"提示|确定选择nick10003为新群主,你将放弃群主身份。"});
  EXPECT_EQ(HostOwner(group), "10001");

  host_.FailOperation("TransferGroupOwner");
  window.confirm = true;
  boxes = window.Boxes().size();
  Confirm();
  EXPECT_EQ(BoxesSince(boxes).back(), "错误|转移群组权限失败!");
  EXPECT_EQ(engine.GroupOwner(Utf8(group)), "10001");

  host_.FailOperation("TransferGroupOwner", false);
  boxes = window.Boxes().size();
  Confirm();
  EXPECT_EQ(BoxesSince(boxes).back(), "提示|转移群组权限成功! \"nick10003\" 已成为新群主");
  EXPECT_EQ(HostOwner(group), "10003");
  EXPECT_EQ(engine.GroupOwner(Utf8(group)), "10003");
  EXPECT_FALSE(Open());
}

std::string Text(QWidget* widget) {
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) return edit->text().toStdString();
  auto* label = qobject_cast<QLabel*>(widget);
  return label ? label->text().toStdString() : std::string();
}

TEST_F(GroupDialogsTest, GroupFunctionShowsTheGroupAndRenamesIt) {
  prefix_ = "GroupFunction";
  const WString group = MakeGroup("10001", {"10002", "10003"});
  Open<GroupFunction>(group, ui::Point{900, 100}, nullptr);
  EXPECT_EQ(Text(Widget("GroupFunction_NameEdit")), "评审组");
  EXPECT_EQ(Text(Widget("GroupFunction_MemberCount")), "群成员 3 人");
  EXPECT_EQ(Text(Widget("GroupFunction_Role")), "我的身份: 群主");
  EXPECT_EQ(Offered(), (Strings{"10001", "10002", "10003"}));
  EXPECT_EQ(picker_->rows().Get(0, "GroupPicker_Role", "text"), u"群主");
  EXPECT_EQ(picker_->rows().Get(1, "GroupPicker_Name", "text"), u"nick10002");
  // The owner hands on or disbands; leaving is for members.
  EXPECT_FALSE(Shown("GroupFunction_LeaveBtn"));
  EXPECT_TRUE(Shown("GroupFunction_TransferBtn"));
  EXPECT_TRUE(Shown("GroupFunction_DisbandBtn"));

  auto* name = qobject_cast<QLineEdit*>(Widget("GroupFunction_NameEdit"));
  host_.FailOperation("RenameGroup");
  size_t boxes = window.Boxes().size();
  name->setText(QStringLiteral("新名字"));
  Click("GroupFunction_RenameBtn");
  EXPECT_EQ(BoxesSince(boxes), Strings{"错误|设置群名称失败！！！"});
  EXPECT_EQ(Text(name), "评审组");
  EXPECT_EQ(engine.GroupName(Utf8(group)), "评审组");

  host_.FailOperation("RenameGroup", false);
  name->setText(QStringLiteral("新名字"));
  Click("GroupFunction_RenameBtn");
  EXPECT_EQ(engine.GroupName(Utf8(group)), "新名字");
  EXPECT_EQ(Utf8(host_.FindGroup(group)->name), "新名字");
  EXPECT_EQ(Text(name), "新名字");
}

TEST_F(GroupDialogsTest, GroupFunctionLeavesAndDisbandsThroughTheirQuestions) {
  prefix_ = "GroupFunction";
  const WString theirs = MakeGroup("10002", {"10001", "10003"});
  Open<GroupFunction>(theirs, ui::Point{900, 100}, nullptr);
  EXPECT_EQ(Text(Widget("GroupFunction_Role")), "我的身份: 群成员");
  EXPECT_TRUE(Shown("GroupFunction_LeaveBtn"));
  EXPECT_FALSE(Shown("GroupFunction_TransferBtn"));
  EXPECT_FALSE(Shown("GroupFunction_DisbandBtn"));
  window.confirm = false;
  size_t boxes = window.Boxes().size();
  Click("GroupFunction_LeaveBtn");
  EXPECT_EQ(BoxesSince(boxes), Strings{"提示|您确定要退出群聊吗？"});
  EXPECT_TRUE(Open());
  window.confirm = true;
  Click("GroupFunction_LeaveBtn");
  EXPECT_FALSE(Open());
  EXPECT_EQ(engine.GroupMembers(Utf8(theirs)), (Strings{"10002", "10003"}));
  EXPECT_EQ(SeenOf(platform::msg::kConversationDatum).size(), 1u);

  const WString mine = MakeGroup("10001", {"10002"});
  GroupFunction& panel = Open<GroupFunction>(mine, ui::Point{900, 100}, nullptr);
  // The question answers itself once shown: first no, then yes.
  std::string answer = "DisbandGroup_CancelBtn";
  std::function<void()> answerQuestion = [&] {
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->objectName() == "DisbandGroupWindow" && w->isVisible()) {
        QTest::mouseClick(w->findChild<QAbstractButton*>(answer.c_str()), Qt::LeftButton);
        return;
      }
    }
    QTimer::singleShot(5, answerQuestion);
  };
  QTimer::singleShot(0, answerQuestion);
  Click("GroupFunction_DisbandBtn");
  EXPECT_TRUE(Open());
  EXPECT_FALSE(engine.GroupOwner(Utf8(mine)).empty());

  answer = "DisbandGroup_ConfirmBtn";
  QTimer::singleShot(0, answerQuestion);
  Click("GroupFunction_DisbandBtn");
  EXPECT_TRUE(panel.Gone());
  EXPECT_FALSE(Open());
  EXPECT_TRUE(engine.GroupOwner(Utf8(mine)).empty());
  EXPECT_FALSE(host_.FindGroup(mine).has_value());
  EXPECT_EQ(SeenOf(platform::msg::kConversationDatum).size(), 2u);
}

TEST_F(GroupDialogsTest, AMembersCardFromThePanelOffersWhatFits) {
  prefix_ = "GroupFunction";
  const WString group = MakeGroup("10002", {"10001", "10003"});
  engine.RemoveFriend("10001", "10003");
  engine.RemoveFriend("10003", "10001");
  tools->RequestFriendList();
  ASSERT_TRUE(PumpUntil([&] { return !tools->FindFriend(u"10003"); }));
  WString chatWith;
  Open<GroupFunction>(group, ui::Point{900, 100}, [&](const WString& id) { chatWith = id; });

  struct Seen {
    std::string name, id, tips;
    bool send = false, add = false;
  };
  auto cardOf = [&](const WString& id, const char* press) {
    Seen seen;
    std::function<void()> look = [&] {
      QWidget* card = nullptr;
      for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->objectName() == "CAddGrouMem_PersonInfo" && w->isVisible()) card = w;
      }
      if (card == nullptr) return QTimer::singleShot(5, look);
      seen.name = Text(card->findChild<QWidget*>("UserInfo_Name"));
      seen.id = Text(card->findChild<QWidget*>("UserInfo_Id"));
      seen.send = card->findChild<QWidget*>("UserInfo_SendMsgBtn")->isVisibleTo(card);
      seen.add = card->findChild<QWidget*>("UserInfo_AddFriendBtn")->isVisibleTo(card);
      QTest::mouseClick(card->findChild<QAbstractButton*>(press), Qt::LeftButton);
      seen.tips = Text(card->findChild<QWidget*>("UserInfo_Tips"));
      // A card that stays (after a friend request) is closed by its button.
      QTest::mouseClick(card->findChild<QAbstractButton*>("UserInfo_closebtn"), Qt::LeftButton);
    };
    QTimer::singleShot(0, look);
    ClickRow(id);
    return seen;
  };
  Seen own = cardOf(u"10001", "UserInfo_closebtn");
  EXPECT_EQ(own.name, "host10001");
  EXPECT_FALSE(own.send);
  EXPECT_FALSE(own.add);

  Seen stranger = cardOf(u"10003", "UserInfo_AddFriendBtn");
  EXPECT_EQ(stranger.id, "账号: 10003");
  EXPECT_TRUE(stranger.send);
  EXPECT_TRUE(stranger.add);
  EXPECT_EQ(stranger.tips, "好友请求已发送");
  EXPECT_TRUE(PumpUntil([&] { return engine.PendencyCount("10003") > 0; }));

  Seen peer = cardOf(u"10002", "UserInfo_SendMsgBtn");
  EXPECT_EQ(peer.name, "nick10002");
  EXPECT_TRUE(peer.send);
  EXPECT_FALSE(peer.add);
  EXPECT_EQ(chatWith, u"10002");
  EXPECT_FALSE(Open());  // the panel made way for the chat
}

}  // namespace
}  // namespace service_test

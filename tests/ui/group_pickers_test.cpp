// The group member pickers through their controls, against the local host
// and the engine: whom each offers, its chain and its texts.
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include "service/panes/group_source.h"
#include "tests/service/group_world.h"
#include "ui/dialogs/add_grou_member.h"
#include "ui/dialogs/create_group.h"
#include "ui/dialogs/delete_group_member.h"
#include "ui/dialogs/form_group_chat.h"
#include "ui/dialogs/transfer_manage.h"

namespace service_test {
namespace {

using platform::W;

class GroupPickersTest : public GroupWorldTest {
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
  // Makes and shows the picker (not modally: the test is its user).
  template <class Dialog, class... Args>
  Dialog& Open(Args&&... args) {
    auto dialog = std::make_unique<Dialog>(*source_, std::forward<Args>(args)...);
    Dialog& made = *dialog;
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
    auto* list = qobject_cast<QAbstractItemView*>(Widget(Prefixed("List").c_str()));
    ASSERT_NE(list, nullptr);
    int row = dialog_->picker().rows().Find(id);
    ASSERT_GE(row, 0) << Utf8(id);
    QRect rect = list->visualRect(list->model()->index(row, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    Settle();
  }
  void Confirm() {
    auto* button = qobject_cast<QAbstractButton*>(Widget(Prefixed("ConfirmBtn").c_str()));
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
    Settle();
  }
  bool ConfirmEnabled() { return Widget(Prefixed("ConfirmBtn").c_str())->isEnabled(); }
  std::vector<std::string> Offered() {
    std::vector<std::string> ids;
    for (const service::GroupPerson& p : dialog_->picker().People()) ids.push_back(Utf8(p.id));
    return ids;
  }
  std::vector<std::string> Chosen() {
    std::vector<std::string> ids;
    for (const service::GroupPerson& p : dialog_->picker().Chosen()) ids.push_back(Utf8(p.id));
    return ids;
  }
  bool Open() { return dialog_->IsCreated(); }
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
  std::unique_ptr<ui::MemberPicker> dialog_;
  std::string prefix_;
};

using Strings = std::vector<std::string>;

TEST_F(GroupPickersTest, CreateGroupMakesTheCloudGroupThenTheChatGroup) {
  prefix_ = "CreateGroup";
  Open<CreateGroup>();
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
  EXPECT_TRUE(dialog_->Succeeded());
  EXPECT_FALSE(Open());
  const WString group = CreatedGroup(u"结构组");
  ASSERT_FALSE(group.empty());
  EXPECT_EQ(engine.GroupOwner(Utf8(group)), "10001");
  EXPECT_EQ(engine.GroupMembers(Utf8(group)), (Strings{"10001", "10002", "10003"}));
  EXPECT_EQ(host_.FindGroup(group)->members.size(), 3u);
}

TEST_F(GroupPickersTest, FormGroupChatStartsWithThePeerWhoStaysPicked) {
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

TEST_F(GroupPickersTest, AddGrouMemberOffersFriendsNotInTheGroup) {
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

TEST_F(GroupPickersTest, DeleteGroupMemberAsksAndOnlyTheOwnerRemoves) {
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

TEST_F(GroupPickersTest, TransferManageMakesThePickedMemberTheOwnerOnBothSides) {
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

}  // namespace
}  // namespace service_test

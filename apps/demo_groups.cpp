#include "apps/demo_groups.h"

#include <QApplication>
#include <QLineEdit>

#include <cstdio>

#include "apps/demo_dialogs.h"
#include "apps/demo_input.h"
#include "apps/demo_script.h"
#include "apps/demo_world.h"
#include "imsdk/engine_control.h"
#include "platform/strings.h"

namespace demo {
namespace {

const QString kGroupName = QStringLiteral("一层平面讨论组");

void Tell(const std::string& text) {
  std::printf("%s\n", text.c_str());
  std::fflush(stdout);
}

// Saves the dialog and adds it to the shots.
bool Shoot(QWidget* dialog, const std::string& path, std::vector<std::string>& shots) {
  QCoreApplication::processEvents();
  if (!Save(dialog, path)) return false;
  shots.push_back(path);
  return true;
}

// The user picks 李工 besides 王工, names the group and creates it.
bool FormGroupFromChat(QWidget* window, const std::string& dataRoot,
                       std::vector<std::string>& shots) {
  if (!OpenConversationNamed(window, QStringLiteral("王工"))) return false;
  return WithModal(
      "CFormGroupChat", [&] { Click(window, "GroupFunctionBtn"); },
      [&](QWidget* dialog) {
        auto* name = dialog->findChild<QLineEdit*>("FormGroupChat_NameEdit");
        if (name == nullptr || !ClickListRow(dialog, "FormGroupChat_List", "李工")) return false;
        name->setText(kGroupName);
        bool saved = Shoot(dialog, dataRoot + "/form-group-chat.png", shots);
        Click(dialog, "FormGroupChat_ConfirmBtn");
        return saved;
      });
}

// The panel of the new group, a member's card and the pickers it opens.
bool VisitGroupPanel(QWidget* window, const std::string& dataRoot,
                     std::vector<std::string>& shots) {
  return WithModal(
      "GroupFunction", [&] { Click(window, "GroupFunctionBtn"); },
      [&](QWidget* panel) {
        bool ok = Shoot(panel, dataRoot + "/group-panel.png", shots);
        auto shootOver = [&](const char* className, const std::function<void()>& open,
                             const std::string& file, const char* pickList = nullptr) {
          return WithModal(className, open, [&](QWidget* dialog) {
            if (pickList != nullptr) ClickListRow(dialog, pickList, "李工");
            return Shoot(dialog, dataRoot + "/" + file, shots);
          });
        };
        ok = ok &&
             shootOver(
                 "CAddGrouMem_PersonInfo",
                 [&] { ClickListRow(panel, "GroupFunction_MemberList", "李工"); },
                 "member-card.png") &&
             shootOver(
                 "AddGrouMember", [&] { Click(panel, "GroupFunction_AddMemberBtn"); },
                 "add-group-member.png", "AddGroupMember_List") &&
             shootOver(
                 "DeleteGroupMemberWindow", [&] { Click(panel, "GroupFunction_DelMemberBtn"); },
                 "delete-group-member.png", "DeleteGroupMember_List") &&
             shootOver(
                 "TransferManageWindow", [&] { Click(panel, "GroupFunction_TransferBtn"); },
                 "transfer-manage.png", "TransferManage_List") &&
             shootOver(
                 "DisbandGroupWindow", [&] { Click(panel, "GroupFunction_DisbandBtn"); },
                 "disband-group.png");
        Click(panel, "GroupFunction_closebtn");
        return ok;
      });
}

}  // namespace

bool ShootGroupWindows(host::local::LocalHost& host, const std::string& dataRoot,
                       std::vector<std::string>& shots) {
  QWidget* window = FindChatWindow();
  if (window == nullptr) return false;
  Click(window, "RecentConverBtn");
  if (!FormGroupFromChat(window, dataRoot, shots)) {
    Tell("The group could not be made from the chat with 王工.");
    return false;
  }
  const WString name = platform::Utf8ToUtf16(kGroupName.toStdString());
  std::optional<GroupDetail> group;
  if (!Pump([&] { return (group = host.FindGroupNamed(name)).has_value(); })) {
    Tell("The host has no group made from the chat.");
    return false;
  }
  Tell("张明 made the group " + kGroupName.toStdString() + " from the chat with 王工 (with 李工).");
  const std::string groupId = platform::Utf16ToUtf8(group->imGroupId);
  imsdk::EngineControl::Instance().SendText(kAnswering, kTIMConv_Group, groupId,
                                            "好的，一层的修改在这里讨论。");
  if (!Pump([&] { return OpenConversationNamed(window, kGroupName); })) {
    Tell("The new group's conversation did not show.");
    return false;
  }
  if (!VisitGroupPanel(window, dataRoot, shots)) {
    Tell("The group panel or a window it opens did not show.");
    return false;
  }
  Tell("The group panel showed the members; the member card and the pickers opened from it.");

  // The create-group picker from the add menu.
  Click(window, "CreateGroupBtn");
  QWidget* menu = nullptr;
  if (!Pump([&] { return (menu = ShownWindow("CAddFriendMenu ")) != nullptr; }) ||
      !WithModal(
          "CreateGroupWindow", [&] { Click(menu, "Elem_Menu_CreateGroup"); },
          [&](QWidget* dialog) {
            ClickListRow(dialog, "CreateGroup_List", "王工");
            return Shoot(dialog, dataRoot + "/create-group.png", shots);
          })) {
    Tell("The create-group picker did not open from the add menu.");
    return false;
  }

  // A friend's card from the friend list's picture.
  Click(window, "FriendsListBtn");
  QWidget* card = nullptr;
  if (!ClickListRow(window, "FriendsList", "王工", 40) ||
      !Pump([&] { return (card = ShownWindow("CFriendList_UserInfoWindow")) != nullptr; }) ||
      !Shoot(card, dataRoot + "/friend-info-card.png", shots)) {
    Tell("The friend's card did not open from the friend list.");
    return false;
  }
  Click(card, "UserInfo_closebtn");
  Tell("The create-group picker and 王工's card opened.");
  return true;
}

}  // namespace demo

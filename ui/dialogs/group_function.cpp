#include "ui/dialogs/group_function.h"

#include "host/host_texts.h"
#include "platform/trace.h"
#include "service/panes/group_picks.h"
#include "ui/dialogs/add_grou_mem_person_info.h"
#include "ui/dialogs/add_grou_member.h"
#include "ui/dialogs/delete_group_member.h"
#include "ui/dialogs/dialog_rows.h"
#include "ui/dialogs/disband_group.h"
#include "ui/dialogs/transfer_manage.h"

using platform::W;

GroupFunction::GroupFunction(service::GroupSource& source, WString groupId, ui::Point anchor,
                             OpenChat openChat)
    : DialogFrame(ui::dialogs::kGroupFunction),
      source_(source),
      groupId_(std::move(groupId)),
      anchor_(anchor),
      openChat_(std::move(openChat)) {}

void GroupFunction::InitWindow() {
  members_.SetUp(FindControl("GroupFunction_MemberList"), ui::PersonPicker::Mode::kNone);
  // GetGroupMemList: what the panel shows comes from the host.
  if (source_.LookUpGroup(groupId_, host::GroupQueryWording::kCommon) !=
      host::GroupLookup::kFound) {
    platform::Trace("GroupFunction: the group could not be looked up, closed");
    Close(0);
    return;
  }
  Show();
}

void GroupFunction::PlaceWindow() {
  const ui::Rect own = GetWindowRect();
  MoveWindow(ui::Rect{anchor_.x - own.Width(), anchor_.y, anchor_.x, anchor_.y + own.Height()});
}

void GroupFunction::Show() {
  std::optional<service::GroupSummary> summary = source_.Summary(groupId_);
  if (!summary) return;
  FindControl("GroupFunction_NameEdit").SetText(summary->name);
  FindControl("GroupFunction_Notice")
      .SetText(u"群公告: " + (summary->notice.empty() ? WString(u"暂无公告") : summary->notice));
  FindControl("GroupFunction_MemberCount")
      .SetText(W("群成员 " + std::to_string(summary->memberCount) + " 人"));
  FindControl("GroupFunction_Role")
      .SetText(summary->userIsOwner ? u"我的身份: 群主" : u"我的身份: 群成员");
  members_.Fill(source_.Members(groupId_));
  FindControl("GroupFunction_TransferBtn").SetVisible(summary->userIsOwner);
  FindControl("GroupFunction_DisbandBtn").SetVisible(summary->userIsOwner);
  FindControl("GroupFunction_LeaveBtn").SetVisible(!summary->userIsOwner);
}

void GroupFunction::Notify(ui::TNotifyUI& msg) {
  if (const service::GroupPerson* member = members_.OnNotify(msg)) {
    const WString id = member->id;
    RunOver<CAddGrouMem_PersonInfo>(id, [this](const WString& chatWith) {
      Close(1);
      if (openChat_) openChat_(chatWith);
    });
    return;
  }
  if (msg.sType == ui::kNotifyReturn &&
      msg.pSender.GetName() == std::string_view("GroupFunction_NameEdit")) {
    Rename();
    return;
  }
  if (msg.sType == ui::kNotifyClick) {
    const std::string name = msg.pSender.GetName();
    if (name == "GroupFunction_closebtn") {
      Close(1);
    } else if (name == "GroupFunction_RenameBtn") {
      Rename();
    } else if (name == "GroupFunction_AddMemberBtn") {
      RunOver<AddGrouMember>(groupId_);
    } else if (name == "GroupFunction_DelMemberBtn") {
      RunOver<DeleteGroupMember>(groupId_);
    } else if (name == "GroupFunction_TransferBtn") {
      RunOver<TransferManage>(groupId_);
    } else if (name == "GroupFunction_LeaveBtn") {
      Leave();
    } else if (name == "GroupFunction_DisbandBtn") {
      Disband();
    }
  }
  DialogFrame::Notify(msg);
}

template <class Dialog, class... Args>
void GroupFunction::RunOver(Args&&... args) {
  Dialog dialog(source_, std::forward<Args>(args)...);
  dialog.RunModal(this);
  Show();
}

void GroupFunction::Rename() {
  std::optional<service::GroupSummary> summary = source_.Summary(groupId_);
  ui::Control edit = FindControl("GroupFunction_NameEdit");
  const WString name = service::CleanGroupName(edit.GetText());
  if (!summary || name.empty() || name == summary->name) {
    if (summary) edit.SetText(summary->name);
    return;
  }
  // A refusal was told; the old name comes back.
  source_.Rename(groupId_, name);
  Show();
}

void GroupFunction::Leave() {
  if (!source_.Prompt().Confirm(W(host::text::kNoticeTitle), u"您确定要退出群聊吗？")) return;
  if (source_.Leave(groupId_) != host::GroupActionResult::kDone) return;
  gone_ = true;
  Close(1);
}

void GroupFunction::Disband() {
  bool disbanded = false;
  (new DisbandGroup(source_, groupId_, disbanded))->RunModal(this);
  if (!disbanded) return;
  gone_ = true;
  Close(1);
}

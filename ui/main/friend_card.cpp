#include "ui/main/friend_card.h"

#include "platform/trace.h"
#include "platform/window_messages.h"
#include "service/chat_tools.h"
#include "service/posting.h"
#include "ui/main/friend_rules.h"

namespace ui::main {

FriendCard::FriendCard(WindowImplBase& window, service::FriendListSource& source, Confirm confirm)
    : window_(window), source_(source), confirm_(std::move(confirm)) {}

void FriendCard::SetUp() {
  card_ = window_.FindControl("IMWnd_FriendCard");
  emptyImage_ = window_.FindControl("IMWnd_EmptyImage");
  emptyText_ = window_.FindControl("IMWnd_EmptyText");
  image_ = window_.FindControl("FriendList_Info_Image");
  name_ = window_.FindControl("FriendList_Info_FriendName");
  remarkLabel_ = window_.FindControl("FriendList_Info_RemarksLabel");
  remarkEdit_ = window_.FindControl("FriendList_Info_RemarksEdit");
}

void FriendCard::FillPersonalInformation(const FriendsList_Stru& friendRecord) {
  if (!card_) return;
  shownId_ = friendRecord.identifier;
  CloseEditor();
  image_.SetAttribute("bkimage", source_.FaceImage(shownId_));
  // The friend's own name on top; the remark, the user's name for them, below.
  const WString& nickname = friendRecord.profile.nick_name;
  name_.SetText(nickname.empty() ? shownId_ : nickname);
  name_.SetToolTip(shownId_);
  ShowRemark(friendRecord.remark);
  emptyImage_.SetVisible(false);
  emptyText_.SetVisible(false);
  card_.SetVisible(true);
}

void FriendCard::Hide() {
  if (!card_) return;
  CloseEditor();
  shownId_.clear();
  card_.SetVisible(false);
  emptyImage_.SetVisible(true);
  emptyText_.SetVisible(true);
}

bool FriendCard::IsShown() const {
  return card_ && card_.IsVisible();
}

void FriendCard::UpdatePicture(const WString& id) {
  if (!id.empty() && id == shownId_) image_.SetAttribute("bkimage", source_.FaceImage(id));
}

void FriendCard::OnKillFocus(const Control& control) {
  if (control == remarkEdit_ && remarkEdit_.IsVisible()) CommitRemarkEdit();
}

void FriendCard::CommitRemarkEdit() {
  if (!remarkEdit_ || !remarkEdit_.IsVisible()) return;
  WString edited = remarkEdit_.GetText();
  // Closed first: the editor's focus loss would commit a second time.
  CloseEditor();
  std::optional<FriendsList_Stru> shown = source_.FindFriend(shownId_);
  if (!shown) return;
  std::optional<WString> remark = RemarkToCommit(shown->remark, edited);
  if (!remark) return;
  int ret = source_.ModifyRemark(shownId_, *remark);
  if (ret != 0) {
    platform::Trace("FriendCard: the remark of %s was not changed (%d)",
                    platform::Utf16ToUtf8(shownId_).c_str(), ret);
    return;
  }
  ShowRemark(*remark);
  shown->remark = *remark;
  // 3149 carries its text in the second parameter; the window frees it.
  service::PostPayload<platform::msg::kFriendRemarkChanged>(
      window_.GetHWND(), service::kNoSession, 0, CChatTools::FriendDisplayName(*shown));
}

void FriendCard::ShowRemark(const WString& remark) {
  remarkLabel_.SetText(remark);
  // Read out with its caption, also when there is no remark.
  remarkLabel_.SetAttribute("accessiblename", u"备注：" + remark);
}

void FriendCard::CloseEditor() {
  remarkEdit_.SetVisible(false);
  remarkLabel_.SetVisible(true);
}

void FriendCard::DeleteFriend(const WString& id) {
  std::optional<FriendsList_Stru> found = source_.FindFriend(id);
  if (!found) return;
  if (!confirm_(u"删除好友", DeleteFriendQuestion(CChatTools::FriendDisplayName(*found)))) return;
  source_.DeleteFriend(id);
  if (id == shownId_) Hide();
}

}  // namespace ui::main

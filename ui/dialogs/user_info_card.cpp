#include "ui/dialogs/user_info_card.h"

namespace ui {
namespace {

constexpr const char* kDoneColour = "#FF53CB4E";
constexpr const char* kFailedColour = "#FFFF0000";

}  // namespace

UserInfoCard::UserInfoCard(const DialogRow& row, service::GroupSource& source, WString userId,
                           OpenChat openChat)
    : DialogFrame(row),
      source_(source),
      userId_(std::move(userId)),
      openChat_(std::move(openChat)) {}

void UserInfoCard::Notify(TNotifyUI& msg) {
  if (msg.sType == kNotifyWindowInit) {
    Fill();
    return;
  }
  if (msg.sType == kNotifyClick) {
    const std::string name = msg.pSender.GetName();
    if (name == "UserInfo_closebtn") {
      Close(1);
    } else if (name == "UserInfo_SendMsgBtn") {
      SendMessage();
    } else if (name == "UserInfo_AddFriendBtn") {
      AddFriend();
    }
  }
  DialogFrame::Notify(msg);
}

void UserInfoCard::Fill() {
  card_ = source_.CardOf(userId_);
  FindControl("UserInfo_Img").SetAttribute("bkimage", card_.person.picture);
  FindControl("UserInfo_Name").SetText(card_.person.name);
  FindControl("UserInfo_Id").SetText(u"账号: " + card_.person.id);
  Control remark = FindControl("UserInfo_Remark");
  remark.SetText(u"备注: " + card_.remark);
  remark.SetVisible(card_.isFriend && !card_.remark.empty());
  FindControl("UserInfo_Signature")
      .SetText(u"签名: " +
               (card_.signature.empty() ? WString(u"这个人很懒，什么都没留下") : card_.signature));
  FindControl("UserInfo_SendMsgBtn").SetVisible(!card_.isUser && openChat_ != nullptr);
  FindControl("UserInfo_AddFriendBtn").SetVisible(!card_.isUser && !card_.isFriend);
}

void UserInfoCard::SendMessage() {
  // The card goes first: the chat window takes the user to the chat.
  OpenChat openChat = openChat_;
  const WString id = card_.person.id;
  Close(1);
  if (openChat) openChat(id);
}

void UserInfoCard::AddFriend() {
  Control tips = FindControl("UserInfo_Tips");
  const bool sent = source_.RequestFriend(card_.person.id) == 0;
  tips.SetText(sent ? u"好友请求已发送" : u"好友请求发送失败");
  tips.SetAttribute("textcolor", sent ? kDoneColour : kFailedColour);
  // One request per card.
  FindControl("UserInfo_AddFriendBtn").SetEnabled(false);
}

}  // namespace ui

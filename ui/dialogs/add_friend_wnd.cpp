#include "ui/dialogs/add_friend_wnd.h"

#include "host/host_texts.h"
#include "service/panes/account_text.h"
#include "service/posting.h"
#include "ui/dialogs/dialog_rows.h"

using host::AccountActionResult;
using host::AccountSearchResult;
using platform::W;

namespace {

constexpr const char* kErrorColour = "#FFFF0000";
constexpr const char* kInfoColour = "#FF53CB4E";
constexpr const char* kEnabledBackground = "#FF5DC8CD";
constexpr const char* kEnabledText = "#FFFFFFFF";
constexpr const char* kDisabledBackground = "#FF212830";
constexpr const char* kDisabledText = "#FF8D8D8D";

// Button text and status per relation (1 registered, 2 unregistered, 3 friend).
struct RelationLook {
  int relation;
  const char* button;
  bool enabled;
  const char* status;
};
constexpr RelationLook kRelationLooks[] = {
    {1, "添加好友", true, "点击添加好友按钮，添加好友！"},
    {2, "邀请好友", true, "点击邀请好友按钮邀请好友注册Plantyr！"},
    {3, "已是好友", false, "已经是好友,不能再添加好友！"},
};

const char* CheckText(service::AccountTextCheck check) {
  switch (check) {
    case service::AccountTextCheck::kEmpty:
      return "请输入查找的账号！";
    case service::AccountTextCheck::kBadMobile:
      return "无效的手机号码！";
    case service::AccountTextCheck::kBadEmail:
      return "无效的邮箱！";
    case service::AccountTextCheck::kValid:
      break;
  }
  return "";
}

}  // namespace

AddFriendWnd::AddFriendWnd(service::AddFriendSource& source)
    : DialogFrame(ui::dialogs::kAddFriendWnd), source_(source) {}

void AddFriendWnd::InitWindow() {
  closeBtn_ = FindControl("btnclose");
  searchBtn_ = FindControl("BtnSearch");
  actionBtn_ = FindControl("Add");
  searchEdit_ = FindControl("EdSearch");
  searchResult_ = FindControl("SearchResult");
  tips_ = FindControl("Tips");
  searchResult_.SetVisible(false);
  searchEdit_.SetFocus();
}

void AddFriendWnd::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyReturn) {
    Search();
    return;
  }
  const std::string name = msg.pSender.GetName();
  if (msg.sType == ui::kNotifyClick) {
    if (name == "btnclose") {
      Close(1);
    } else if (name == "BtnSearch") {
      Search();
    } else if (name == "Add") {
      ActOnResult();
    }
  } else if (msg.sType == ui::kNotifyTextChanged && ui::EqualsNoCase(name, "EdSearch")) {
    searchResult_.SetVisible(false);
  }
  DialogFrame::Notify(msg);
}

ui::LRESULT AddFriendWnd::HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  if (uMsg == platform::msg::kConversationLogoChanged) {
    auto arrived = service::AdoptPosted<platform::msg::kConversationLogoChanged>(wParam);
    // A picture of an earlier search is not shown over this one.
    if (arrived && arrived->value == found_.imUserId && searchResult_.IsVisible()) ShowAvatar();
    return 1;
  }
  return DialogFrame::HandleMessage(uMsg, wParam, lParam);
}

void AddFriendWnd::Search() {
  account_ = searchEdit_.GetText();
  found_ = AccountInfo{};  // nothing to act on until this search finds something
  const service::AccountTextCheck check = service::CheckAccountText(account_);
  if (check != service::AccountTextCheck::kValid) {
    ShowStatus(W(CheckText(check)), true);
    if (check != service::AccountTextCheck::kEmpty) searchResult_.SetVisible(false);
    return;
  }
  kind_ = service::AccountKindOf(account_);
  AccountInfo info;
  switch (source_.SearchAccount(account_, kind_, info)) {
    case AccountSearchResult::kUnavailable:  // no host: nothing to tell
      searchResult_.SetVisible(false);
      return;
    case AccountSearchResult::kNotFound:
      ShowStatus(W(host::text::kSearchFailed), true);
      searchResult_.SetVisible(false);
      return;
    case AccountSearchResult::kFound:
      break;
  }
  found_ = info;
  if (source_.IsOwnAccount(found_)) {
    SetActionEnabled(false);
    ShowStatus(u"不能添加自己为好友！", true);
  } else {
    for (const RelationLook& look : kRelationLooks) {
      if (look.relation != found_.relation) continue;
      actionBtn_.SetText(W(look.button));
      SetActionEnabled(look.enabled);
      ShowStatus(W(look.status), false);
    }
  }
  ShowFound();
}

void AddFriendWnd::ShowAvatar() {
  FindControl("HeaderImg").SetAttribute("bkimage", source_.AvatarPicture(found_, GetHWND()));
}

void AddFriendWnd::ShowFound() {
  ShowAvatar();
  // An address without account has no name: the address itself stands in.
  const WString& name = found_.displayName.empty() ? account_ : found_.displayName;
  FindControl("AddFriend_NickName").SetText(u"用户名: " + name);
  searchResult_.SetVisible(true);
}

void AddFriendWnd::ActOnResult() {
  switch (source_.ActOnAccount(account_, kind_, found_)) {
    case AccountActionResult::kFriendRequestSent:
      ShowStatus(u"好友请求发送成功！", false);
      break;
    case AccountActionResult::kInvited:
      ShowStatus(W(host::text::kInviteSent), false);
      break;
    case AccountActionResult::kAlreadyFriend:
      // Worded differently from the search's text on purpose.
      actionBtn_.SetText(u"已是好友");
      ShowStatus(u"已经是好友,不能再次添加好友！", false);
      break;
    case AccountActionResult::kUnavailable:
    case AccountActionResult::kNone:
      break;
  }
  // One action per search.
  searchEdit_.SetText(WString());
  SetActionEnabled(false);
}

void AddFriendWnd::ShowStatus(const WString& text, bool error) {
  tips_.SetText(text);
  tips_.SetAttribute("textcolor", error ? kErrorColour : kInfoColour);
}

void AddFriendWnd::SetActionEnabled(bool enabled) {
  actionBtn_.SetEnabled(enabled);
  actionBtn_.SetAttribute("bkcolor", enabled ? kEnabledBackground : kDisabledBackground);
  actionBtn_.SetAttribute("textcolor", enabled ? kEnabledText : kDisabledText);
}

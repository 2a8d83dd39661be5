// CIMWnd's user events: notifications, clicks, item selections, context
// menus and their commands, and the input messages. Each goes to one pane.
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "host/feature_use.h"
#include "platform/trace.h"
#include "service/current_conversation.h"
#include "service/posting.h"
#include "ui/kit/popup_menu.h"
#include "ui/main/history_paging.h"
#include "ui/main/im_wnd.h"

namespace msg = platform::msg;
using service::AdoptPostedSecond;
using ui::EqualsNoCase;

namespace {

ui::Control AncestorNamed(ui::Control control, std::string_view name) {
  for (; control; control = control.GetParent()) {
    if (control.GetName() == name) return control;
  }
  return {};
}

uint64_t NowMs() {
  using namespace std::chrono;
  return static_cast<uint64_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

void CIMWnd::Notify(ui::TNotifyUI& msg) {
  const std::string& type = msg.sType;
  if (type == ui::kNotifyWindowInit) {
    OnDuiWindowInit();
  } else if (type == ui::kNotifyKillFocus) {
    friends_->OnKillFocus(msg.pSender);
  } else if (type == ui::kNotifyClick) {
    OnClick(msg);
  } else if (type == ui::kNotifyItemClick) {
    OnItemClick(msg);
  } else if (type == ui::kNotifyTextChanged) {
    OnTextChanged(msg);
  } else if (type == ui::kNotifyRButtonUp) {
    OnContextMenu(msg);
  } else if (type == ui::kNotifyReturn) {
    if (msg.pSender.GetName() == "ChatWindow_SendrichEdit") {
      composer_->Send();
    } else {
      friends_->OnReturn(msg.pSender);
    }
  }
  WindowImplBase::Notify(msg);
}

void CIMWnd::OnClick(ui::TNotifyUI& msg) {
  const std::string name = msg.pSender.GetName();
  const ui::Control& sender = msg.pSender;
  auto openItem = [&] { conversations_->OpenItem(sender); };
  // A message's avatar carries its sender's id.
  auto openSenderInfo = [&] {
    if (!sender.GetUserData().empty()) dialogs_->OpenUserInfo(sender.GetUserData());
  };
  auto thenFocusComposer = [&](const std::function<void()>& act) {
    return [&, act] {
      act();
      controls_.composer.SetFocus();
    };
  };
  struct Route {
    std::string_view name;
    bool exactCase;
    std::function<void()> act;
  };
  // Tested in this order.
  const Route routes[] = {
      {"IMWnd_closebtn", false, [&] { platform::PostMessage(GetHWND(), ui::kWmClose, 0, 0); }},
      {"ChatDrawBtn", false, [&] { dialogs_->ManageSharedDrawings(); }},
      {"GroupFunctionBtn", false, [&] { dialogs_->OpenGroupFunction(sender); }},
      {"IMWnd_FindChatHistoryBtn", false, [] {}},
      {"IMWnd_UploadFiles", false, thenFocusComposer([&] { composer_->SendFiles(); })},
      {"IMWnd_UploadImage", false, thenFocusComposer([&] { composer_->SendPictures(); })},
      {"IMWnd_UploadDrawBtn", false, thenFocusComposer([&] { dialogs_->SendDrawing(); })},
      {"IMWnd_SharedChatBtn", false, [&] { dialogs_->StartSharedChat(); }},
      {"IMWnd_EmoticonsBtn", false, [&] { composer_->OpenEmoticons(); }},
      {"IMSetUp", false, [&] { dialogs_->OpenSettings(sender); }},
      {"IMWnd_AddFriend", true,
       [&] { dialogs_->AddFriendByAccount(controls_.searchEdit.GetText()); }},
      {"SendMsgBtn", true, [&] { composer_->Send(); }},
      {"CreateGroupBtn", true, [&] { dialogs_->OpenAddMenu(sender); }},
      {"RecentConverBtn", false,
       [&] {
         friends_->HideCard();
         conversations_->ShowConversationsPage();
       }},
      {"FriendsListBtn", false,
       [&] {
         friends_->HideCard();
         conversations_->ShowFriendsPage();
       }},
      {"ConverItem_logo", false, openItem},
      {"ConverItem_nickname", false, openItem},
      {"ConverItem_description", false, openItem},
      {"ConverItem_Display_time", false, openItem},
      {"friend_list_Image", false,
       [&] {
         service::SetCurrentConversation(service::CurrentConvId(), 1);
         friends_->ShowUserCard(sender);
         dialogs_->OpenFriendCard(friends_->FriendIdOf(sender));
       }},
      {"friend_list_nickname", false, [&] { friends_->SelectFriend(sender); }},
      {"FriendList_Info_RemarksBtn", false,
       [&] {
         ui::Control label = FindControl("FriendList_Info_RemarksLabel");
         ui::Control edit = FindControl("FriendList_Info_RemarksEdit");
         edit.SetText(label.GetText());
         label.SetVisible(false);
         edit.SetVisible(true);
         edit.SetFocus();
         edit.SetSelAll();
       }},
      {"GroupList_Img", false, [&] { friends_->SelectGroup(sender); }},
      {"GroupList_Nickname", false, [&] { friends_->SelectGroup(sender); }},
      {"AddFriendRequire_NewFriendImage", false, [&] { friends_->ShowRequests(); }},
      {"AddFriendRequire_NewFriendName", false, [&] { friends_->ShowRequests(); }},
      {"AddFriendRequire_NewGroupImage", false, [&] { friends_->ShowGroups(); }},
      {"AddFriendRequire_NewGroupName", false, [&] { friends_->ShowGroups(); }},
      {"PerSonInfo_DeleteFriend", false,
       [&] { service::Post(GetHWND(), msg::kDeleteShownFriend); }},
      {"PerSonInfo_SendMsg", false, [&] { friends_->OpenChatWithShownFriend(); }},
      {"AddFriendRequire_FriendImage", false, [] {}},
      {"AddFriendRequire_NickName", false, [] {}},
      {"FriendRequire_ConfirmBtn", false, [&] { friends_->AcceptRequest(sender); }},
      {"FriendChatItem_Avatar", true, openSenderInfo},
      {"MyselfChatItem_Avatar", true, openSenderInfo},
  };
  for (const Route& route : routes) {
    if (route.exactCase ? name == route.name : EqualsNoCase(name, route.name)) {
      route.act();
      return;
    }
  }
}

void CIMWnd::OnItemClick(ui::TNotifyUI& msg) {
  const std::string name = msg.pSender.GetName();
  if (name == "group_node_item") {
    conversations_->OpenItem(msg.pSender);
  } else if (name == "FriendItemSelected") {
    friends_->SelectFriend(msg.pSender);
  } else if (name == "GroupItemSelected") {
    friends_->SelectGroup(msg.pSender);
  } else if (name == "AddFriendRequire_NewFriendItem") {
    friends_->ShowRequests();
  } else if (name == "AddFriendRequire_NewGroupItem") {
    friends_->ShowGroups();
  }
  // "FileDwgMsgItem" and "AddFriendRequire_Item" select nothing.
}

void CIMWnd::OnTextChanged(ui::TNotifyUI& msg) {
  if (!(msg.pSender == controls_.searchEdit)) return;
  // The lists filter themselves by the search text when they rebuild.
  if (controls_.recentConverBtn.IsSelected()) {
    service::Post(GetHWND(), msg::kRecentConversationsChanged);
  } else if (controls_.friendsListBtn.IsSelected()) {
    service::Post(GetHWND(), msg::kFriendListChanged);
  }
}

void CIMWnd::OnContextMenu(ui::TNotifyUI& msg) {
  rightClickPoint_ = msg.ptMouse;
  const std::string name = msg.pSender.GetName();
  if (name == "ChatWindow_richRecv" || name == "ChatWindow_SendrichEdit") return;
  ui::PopupMenu menu;
  if (msg.pSender.IsInside(controls_.conversationList)) {
    menu.AppendItem(kCmdDeleteConversation, u"删除会话");
  } else if (ui::Control item = AncestorNamed(msg.pSender, "FriendItemSelected")) {
    friends_->RememberMenuTarget(item);
    menu.AppendItem(kCmdFriendSendMessage, u"发送消息");
    menu.AppendItem(kCmdDeleteFriend, u"删除好友");
  } else if (ui::Control group = AncestorNamed(msg.pSender, "GroupItemSelected")) {
    friends_->RememberMenuTarget(group);
    menu.AppendItem(kCmdGroupSendMessage, u"发送消息");
    menu.AppendItem(kCmdQuitGroup, u"退出群组");
    return;  // built and never shown: a group item has no menu
  }
  if (menu.ItemCount() > 0) menu.Track(ClientToScreen(msg.ptMouse), *this);
}

void CIMWnd::OnCommand(unsigned commandId) {
  switch (commandId) {
    case kCmdDeleteConversation:
      conversations_->DeleteOpenConversation();
      break;
    case kCmdFriendSendMessage:
      friends_->OpenChatWithMenuFriend();
      break;
    case kCmdDeleteFriend:
      friends_->DeleteMenuFriend();
      break;
    case kCmdAddFriend:
      host::RecordFeatureUse(host::FeatureUse::kAddFriend);
      dialogs_->OpenAddFriend();
      break;
    case kCmdCreateGroup:
      host::RecordFeatureUse(host::FeatureUse::kCreateGroup);
      dialogs_->OpenCreateGroup();
      break;
    case kCmdGroupSendMessage:
      friends_->OpenGroupChat();
      break;
    default:
      break;  // 3169, 3175 ("退出群组"), 3176 and others: no handler
  }
}

ui::LRESULT CIMWnd::OnClose(unsigned, ui::WPARAM, ui::LPARAM, bool& bHandled) {
  if (destroying_) {
    bHandled = false;  // the kit's close: the window goes
    return 0;
  }
  // The user never destroys the chat window; it only hides.
  ShowWindow(false, false);
  visible_.store(false);
  bHandled = true;
  return 0;
}

std::optional<ui::LRESULT> CIMWnd::HandleInputMessage(unsigned uMsg, ui::WPARAM wParam,
                                                      ui::LPARAM lParam) {
  auto passOn = [&] { return WindowImplBase::HandleMessage(uMsg, wParam, lParam); };
  switch (uMsg) {
    case ui::kWmSize:
      ApplyChatRecordHeight();
      return passOn();
    case ui::kWmLButtonDblClk: {
      ui::Control at = FindControlAt(ui::Point{ui::LowWord(lParam), ui::HighWord(lParam)});
      if (!friends_->OnDoubleClick(at) && at.GetName() == "List_Item_RichEdit") {
        messageView_->OpenAttachment(at);
      }
      return 1;
    }
    case ui::kWmKeyDown:
      if (wParam == 'V' && (lParam & ui::kKeyCtrl) != 0 && controls_.composer.IsFocused()) {
        composer_->PasteKey();
        return 1;
      }
      return std::nullopt;
    case msg::kMenuNotify: {
      auto target = AdoptPostedSecond<msg::kMenuNotify>(lParam);
      if (target && target->value) SendNotify(target->value, ui::kNotifyMenu, wParam, 0);
      return passOn();
    }
    case msg::kEmoticonChosen: {
      ui::LRESULT result = composer_->InsertEmoticon(wParam, lParam);
      passOn();
      return result;
    }
    case msg::kFriendRemarkChanged: {
      auto remark = AdoptPostedSecond<msg::kFriendRemarkChanged>(lParam);
      if (remark) friends_->OnRemarkChanged(remark->value);
      return WindowImplBase::HandleMessage(uMsg, wParam, 0);
    }
    case msg::kComposerCut:
      composer_->Cut();
      return passOn();
    case ui::kWmDropFiles:
      if (wParam != 0) composer_->DropFiles(*reinterpret_cast<const std::vector<WString>*>(wParam));
      return 1;
    case msg::kComposerPaste:
      if (FindControlAt(rightClickPoint_) == controls_.composer) composer_->Paste();
      return passOn();
    case msg::kMenuSaveAs:
      platform::Trace("OnMenu_SaveAs exit!!!!!!");
      return passOn();
    case msg::kOpenAddFriend:
    case msg::kOpenCreateGroup:
      OnCommand(uMsg == msg::kOpenAddFriend ? kCmdAddFriend : kCmdCreateGroup);
      return passOn();
    case ui::kWmCommand:
      OnCommand(static_cast<unsigned>(wParam));
      return passOn();
    case ui::kWmMouseWheel:
      OnWheel(wParam, lParam);
      return passOn();
    default:
      return std::nullopt;
  }
}

void CIMWnd::OnWheel(ui::WPARAM wParam, ui::LPARAM lParam) {
  ui::Control& view = controls_.hisRecordList;
  if (!view) return;
  ui::Control at = FindControlAt(ui::Point{ui::LowWord(lParam), ui::HighWord(lParam)});
  if (!at.IsInside(view)) return;
  uint64_t now = NowMs();
  int delta = ui::HighWord(static_cast<ui::LPARAM>(wParam));
  ui::main::PageFetch fetch = ui::main::DecidePageFetch(delta, now, lastPageFetchMs_,
                                                        view.GetScrollPos(), view.GetScrollRange());
  bool fetched = fetch == ui::main::PageFetch::kOlder   ? messageView_->FetchOlderPage()
                 : fetch == ui::main::PageFetch::kNewer ? messageView_->FetchNewerPage()
                                                        : false;
  if (fetched) lastPageFetchMs_ = now;
}

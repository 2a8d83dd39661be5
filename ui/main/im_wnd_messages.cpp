// CIMWnd's window messages: what the service layer, the window port and the
// kit post or send. Each number goes to one pane or one step.
#include <memory>
#include <string>

#include "platform/trace.h"
#include "records/message_records.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/posting.h"
#include "service/sdk_event_record.h"
#include "service/window_port.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/main/im_wnd.h"

namespace msg = platform::msg;

namespace {

// A payload of a session that has ended belongs to a user who is gone.
template <typename P>
bool OfSession(const CChatTools& tools, const std::unique_ptr<P>& posted) {
  if (!posted) return false;
  if (tools.IsCurrentSession(posted->session)) return true;
  platform::Trace("CIMWnd: a payload of an ended session is dropped");
  return false;
}

}  // namespace
using service::AdoptPosted;
using service::AdoptPostedSecond;

ui::LRESULT CIMWnd::HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  if (destroying_ && uMsg != ui::kWmClose) {
    DropPayload(uMsg, wParam, lParam);
    return 0;
  }
  if (HandleServiceMessage(uMsg, wParam, lParam) || HandleListMessage(uMsg, wParam, lParam) ||
      HandlePortMessage(uMsg, wParam, lParam)) {
    return 1;
  }
  if (std::optional<ui::LRESULT> result = HandleInputMessage(uMsg, wParam, lParam)) return *result;
  // A payload no handler took is still the window's to free.
  if (DropPayload(uMsg, wParam, lParam)) return 1;
  return WindowImplBase::HandleMessage(uMsg, wParam, lParam);
}

bool CIMWnd::HandleServiceMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM) {
  switch (uMsg) {
    case msg::kSdkEvent: {
      auto record = AdoptPosted<msg::kSdkEvent>(wParam);
      if (!record) return true;
      tools_.DispatchSdkEvent(record->value, record->session);
      if (record->value.recent_list_flag != 0) {
        service::Post<msg::kRecentConversationsChanged>(GetHWND());
      }
      return true;
    }
    case msg::kMoveWindow: {
      if (auto rect = AdoptPosted<msg::kMoveWindow>(wParam)) {
        MoveWindow({rect->value.left, rect->value.top, rect->value.right, rect->value.bottom});
      }
      return true;
    }
    case msg::kNetworkStatusChanged:
      SetNetworkStatus();
      return true;
    case msg::kMessageListArrived:
      if (auto page = AdoptPosted<msg::kMessageListArrived>(wParam)) {
        tools_.OnMsgListArrived(std::move(page->value), page->session);
      }
      return true;
    case msg::kFriendDeleted:
      if (auto ids = AdoptPosted<msg::kFriendDeleted>(wParam)) {
        tools_.OnFriendsDeleted(ids->value, ids->session);
      }
      return true;
    case msg::kReloadGroupsFromHost:
      tools_.LoadHostGroups();
      return true;
    case msg::kConversationDatum: {
      if (auto convId = AdoptPosted<msg::kConversationDatum>(wParam)) {
        OnConversationGone(convId->value);
      }
      return true;
    }
    case msg::kClearComposer:
      composer_->Clear();
      return true;
    case msg::kRefreshMessageView:
      RefreshMessageView(static_cast<int>(wParam));
      return true;
    case msg::kDrawingSyncNotice:
      if (auto message = AdoptPosted<msg::kDrawingSyncNotice>(wParam); OfSession(tools_, message)) {
        dialogs_->OnSharedChatNotice(message->value);
        messageView_->OnMessageChanged(message->value);
      }
      return true;
    case msg::kTransferStateChanged:
      messageView_->OnTransferChanged(wParam, 0);
      return true;
    case msg::kLoadConversationHistory:
      messageView_->LoadFromStore(wParam);
      return true;
    default:
      return false;
  }
}

// The conversation list and the friend lists.
bool CIMWnd::HandleListMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  switch (uMsg) {
    case msg::kRecentConversationsChanged:
      conversations_->UpdateRencentConvList();
      return true;
    case msg::kConversationSummaryChanged:
      if (auto convId = AdoptPosted<msg::kConversationSummaryChanged>(wParam);
          OfSession(tools_, convId)) {
        conversations_->UpdateSummary(convId->value);
      }
      return true;
    case msg::kConversationLogoChanged:
      if (auto convId = AdoptPosted<msg::kConversationLogoChanged>(wParam);
          OfSession(tools_, convId)) {
        conversations_->UpdatePicture(convId->value);
        friends_->UpdatePicture(convId->value);
      }
      return true;
    case msg::kConversationNameChanged: {
      auto convId = AdoptPosted<msg::kConversationNameChanged>(wParam);
      auto name = AdoptPostedSecond<msg::kConversationNameChanged>(lParam);
      if (OfSession(tools_, convId) && name) conversations_->UpdateName(convId->value, name->value);
      return true;
    }
    case msg::kUnreadMarker:
      conversations_->MarkConversationsButton();
      return true;
    case msg::kFriendRequestsChanged:
      friends_->RefreshRequests();
      conversations_->MarkFriendsButton();
      service::Post<msg::kFriendListChanged>(GetHWND());
      return true;
    case msg::kFriendListChanged:
      friends_->UpdateFriendList();
      return true;
    case msg::kGroupListChanged:
      friends_->UpdateGroupList();
      return true;
    case msg::kFriendRequestListChanged:
      friends_->DisplayFriendRequireList();
      return true;
    case msg::kRefreshNewFriendEntry:
      friends_->RefreshNewFriendEntry();
      return true;
    case msg::kDeleteShownFriend:
      friends_->DeleteShownFriend();
      return true;
    case msg::kCommitRemarkEdit:
      friends_->CommitRemarkEdit();
      return true;
    case msg::kFriendRequestHandled:
      if (auto answer = AdoptPosted<msg::kFriendRequestHandled>(wParam);
          OfSession(tools_, answer)) {
        friends_->OnRequestAnswered(answer->value);
      }
      return true;
    case msg::kFriendRequestAccepted:
      friends_->RefetchProfiles();
      return true;
    default:
      return false;
  }
}

void CIMWnd::RefreshMessageView(int mode) {
  if (!controls_.hisRecordList) return;
  switch (mode) {
    case 0:
      messageView_->ShowMsgs();
      break;
    case 1:
      messageView_->ShowMsgs();
      StartScrollTimer(kScrollToBottomTimer);
      break;
    case 2:
      messageView_->ReloadCurrentConversation();
      messageView_->ShowMsgs();
      StartScrollTimer(kScrollToBottomTimer);
      break;
    case 3:
      messageView_->SetLoadingOlder(true);
      messageView_->ShowMsgs();
      messageView_->SetLoadingOlder(false);
      StartScrollTimer(kScrollToTopTimer);
      break;
    case 4: {
      ui::Control& view = controls_.hisRecordList;
      bool atBottom = view.GetScrollPos() == view.GetScrollRange();
      messageView_->ReloadCurrentConversation();
      messageView_->ShowMsgs();
      if (atBottom) StartScrollTimer(kScrollToBottomTimer);
      break;
    }
    default:
      platform::Trace("CIMWnd: unknown refresh mode %d", mode);
      break;
  }
}

void CIMWnd::OnConversationGone(const WString& convId) {
  if (service::IsCurrentConversation(convId)) {
    service::SetCurrentPeerId(WString());
    controls_.chatModule.SelectItem(kEmptyChatPage);
  }
  tools_.DeleteConv(convId);
}

bool CIMWnd::HandlePortMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM) {
  switch (uMsg) {
    case ui::port_msg::kShowBox: {
      if (auto box = AdoptPosted<ui::port_msg::kShowBox>(wParam)) ShowPortBox(box->value);
      return true;
    }
    case ui::port_msg::kResetWindow:
      ResetChatWindow();
      return true;
    case ui::port_msg::kHideWindow:
      if (IsWindowVisible()) HideChat();
      return true;
    case ui::port_msg::kFlashHost:
      FlashHostWindowIfMinimised();
      return true;
    default:
      return false;
  }
}

void CIMWnd::ShowPortBox(const PortBoxRequest& box) {
  switch (static_cast<service::BoxOwner>(box.owner)) {
    case service::BoxOwner::kChatWindow:
      CChatMessageBox(box.title, box.text, this, CChatMessageBox::kNotice);
      return;
    case service::BoxOwner::kHostWindow:
      CChatMessageBox(box.title, box.text, ui::HostWindow{parent_}, CChatMessageBox::kNotice);
      return;
    case service::BoxOwner::kNone:
      break;
  }
  CChatMessageBox(box.title, box.text, nullptr, CChatMessageBox::kNotice);
}

bool CIMWnd::DropPayload(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  // The window's own entries first, then the service's table.
  switch (uMsg) {
    case ui::port_msg::kShowBox:
      service::DropPostedOf<ui::port_msg::kShowBox>(wParam, lParam);
      return true;
    case msg::kMenuNotify:
      service::DropPostedOf<msg::kMenuNotify>(wParam, lParam);
      return true;
    default:
      return service::DropPosted(uMsg, wParam, lParam);
  }
}

ui::LRESULT CIMWnd::HandleCustomMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam,
                                        bool& bHandled) {
  if (uMsg != ui::kWmTimer)
    return WindowImplBase::HandleCustomMessage(uMsg, wParam, lParam, bHandled);
  auto id = static_cast<unsigned>(wParam);
  if (id != kScrollToBottomTimer && id != kScrollToTopTimer) {
    return WindowImplBase::HandleCustomMessage(uMsg, wParam, lParam, bHandled);
  }
  KillTimer(id);
  ui::Control& view = controls_.hisRecordList;
  if (view) view.SetScrollPos(id == kScrollToBottomTimer ? view.GetScrollRange() : 0);
  bHandled = true;
  return 0;
}

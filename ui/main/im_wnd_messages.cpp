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
using service::AdoptPayload;

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
      std::unique_ptr<SdkEventRecord> record = AdoptPayload<SdkEventRecord>(wParam);
      if (!record) return true;
      tools_.DispatchSdkEvent(*record);
      if (record->recent_list_flag != 0) {
        service::Post(GetHWND(), msg::kRecentConversationsChanged);
      }
      return true;
    }
    case msg::kMoveWindow: {
      std::unique_ptr<ui::Rect> rect = AdoptPayload<ui::Rect>(wParam);
      if (rect) MoveWindow(*rect);
      return true;
    }
    case msg::kNetworkStatusChanged:
      SetNetworkStatus();
      return true;
    case msg::kMessageListArrived:
      tools_.OnMsgListArrived(AdoptPayload<std::string>(wParam));
      return true;
    case msg::kFriendDeleted:
      tools_.OnFriendsDeleted(AdoptPayload<std::string>(wParam));
      return true;
    case msg::kReloadGroupsFromHost:
      tools_.LoadHostGroups();
      return true;
    case msg::kConversationDatum: {
      std::unique_ptr<WString> convId = AdoptPayload<WString>(wParam);
      if (convId) OnConversationGone(*convId);
      return true;
    }
    case msg::kClearComposer:
      composer_->Clear();
      return true;
    case msg::kRefreshMessageView:
      RefreshMessageView(static_cast<int>(wParam));
      return true;
    case msg::kDrawingSyncNotice:
      if (auto message = AdoptPayload<MessageStru>(wParam))
        messageView_->OnMessageChanged(*message);
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
      if (auto convId = AdoptPayload<WString>(wParam)) conversations_->UpdateSummary(*convId);
      return true;
    case msg::kConversationLogoChanged:
      if (auto id = AdoptPayload<WString>(wParam)) {
        conversations_->UpdatePicture(*id);
        friends_->UpdatePicture(*id);
      }
      return true;
    case msg::kConversationNameChanged: {
      std::unique_ptr<WString> convId = AdoptPayload<WString>(wParam);
      std::unique_ptr<WString> name = AdoptPayload<WString>(lParam);
      if (convId && name) conversations_->UpdateName(*convId, *name);
      return true;
    }
    case msg::kUnreadMarker:
      conversations_->MarkConversationsButton();
      return true;
    case msg::kFriendRequestsChanged:
      friends_->RefreshRequests();
      conversations_->MarkFriendsButton();
      service::Post(GetHWND(), msg::kFriendListChanged);
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
      if (auto answer = AdoptPayload<FriendRequestResult>(wParam))
        friends_->OnRequestAnswered(*answer);
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
      std::unique_ptr<PortBoxRequest> box = AdoptPayload<PortBoxRequest>(wParam);
      if (box) {
        ui::WindowImplBase* owner =
            box->owner == static_cast<int>(service::BoxOwner::kChatWindow) ? this : nullptr;
        CChatMessageBox(box->title, box->text, owner, CChatMessageBox::kNotice);
      }
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

bool CIMWnd::DropPayload(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  switch (uMsg) {
    case msg::kSdkEvent:
      AdoptPayload<SdkEventRecord>(wParam);
      break;
    case msg::kMoveWindow:
      AdoptPayload<ui::Rect>(wParam);
      break;
    case msg::kMessageListArrived:
    case msg::kFriendDeleted:
      AdoptPayload<std::string>(wParam);
      break;
    case msg::kConversationDatum:
    case msg::kConversationLogoChanged:
    case msg::kConversationSummaryChanged:
      AdoptPayload<WString>(wParam);
      break;
    case msg::kFriendRemarkChanged:
      AdoptPayload<WString>(lParam);
      break;
    case msg::kDrawingSyncNotice:
      AdoptPayload<MessageStru>(wParam);
      break;
    case msg::kFriendRequestHandled:
      AdoptPayload<FriendRequestResult>(wParam);
      break;
    case msg::kConversationNameChanged:
      AdoptPayload<WString>(wParam);
      AdoptPayload<WString>(lParam);
      break;
    case ui::port_msg::kShowBox:
      AdoptPayload<PortBoxRequest>(wParam);
      break;
    case msg::kMenuNotify:
      AdoptPayload<ui::Control>(lParam);
      break;
    default:
      return false;
  }
  return true;
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

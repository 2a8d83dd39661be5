// CIMWnd's dispatch: notifications, clicks and window messages.
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

namespace {

bool EqualsNoCase(const std::string& a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

}  // namespace

void CIMWnd::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyWindowInit) {
    OnDuiWindowInit();
  } else if (msg.sType == ui::kNotifyClick) {
    OnClick(msg);
  }
  WindowImplBase::Notify(msg);
}

void CIMWnd::OnClick(ui::TNotifyUI& msg) {
  std::string name = msg.pSender.GetName();
  if (EqualsNoCase(name, "IMWnd_closebtn")) {
    platform::PostMessage(GetHWND(), ui::kWmClose, 0, 0);
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

ui::LRESULT CIMWnd::HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  if (destroying_ && uMsg != ui::kWmClose) {
    DropPayload(uMsg, wParam, lParam);
    return 0;
  }
  if (HandleServiceMessage(uMsg, wParam, lParam) || HandlePortMessage(uMsg, wParam, lParam)) {
    return 1;
  }
  // A payload no handler took is still the window's to free.
  if (DropPayload(uMsg, wParam, lParam)) return 1;
  if (uMsg == ui::kWmSize) ApplyChatRecordHeight();
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
    default:
      return false;
  }
}

void CIMWnd::OnConversationGone(const WString& convId) {
  if (service::IsCurrentConversation(convId)) {
    service::SetCurrentPeerId(WString());
    chatModule_.SelectItem(kEmptyChatPage);
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
      AdoptPayload<WString>(wParam);
      break;
    case msg::kDrawingSyncNotice:
      AdoptPayload<MessageStru>(wParam);
      break;
    case msg::kConversationNameChanged:
      AdoptPayload<WString>(wParam);
      AdoptPayload<WString>(lParam);
      break;
    case ui::port_msg::kShowBox:
      AdoptPayload<PortBoxRequest>(wParam);
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
  if (hisRecordList_) {
    hisRecordList_.SetScrollPos(id == kScrollToBottomTimer ? hisRecordList_.GetScrollRange() : 0);
  }
  bHandled = true;
  return 0;
}

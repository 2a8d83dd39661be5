#include "ui/main/im_wnd.h"

#include <QApplication>
#include <QWidget>

#include "host/host_access.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/named_mutexes.h"

namespace {

// The columns and buttons the compact (shared chat) layout hides.
constexpr const char* kCompactHidden[] = {
    "IMWnd_Col1",          "IMWnd_Col2",  "IMWnd_Col3",       "IMWnd_Col4",
    "IMWnd_SharedChatBtn", "ChatDrawBtn", "GroupFunctionBtn",
};

QWidget* HostFrame(void* parent) {
  if (parent == nullptr || QApplication::instance() == nullptr) return nullptr;
  // Looked up rather than cast: a stale or foreign id simply finds nothing.
  return QWidget::find(static_cast<WId>(reinterpret_cast<uintptr_t>(parent)));
}

}  // namespace

CIMWnd::CIMWnd(CChatTools& tools) : tools_(tools) {
  service::CreateModuleMutexes();
  service::ForgetCurrentConversation();
}

CIMWnd::~CIMWnd() = default;

void CIMWnd::SetParam(void* parent) {
  parent_ = parent;
}

bool CIMWnd::OnWindowThread() const {
  return windowThread_.load() == std::this_thread::get_id();
}

bool CIMWnd::CreateChatWindow() {
  if (IsCreated()) return false;
  windowThread_.store(std::this_thread::get_id());
  if (!Create(nullptr, u"DUIWnd", ui::WindowStyle::kTopLevel)) {
    platform::Trace("CIMWnd: the skin IMWnd.xml could not be loaded");
    return false;
  }
  handle_.store(GetHWND());
  if (QWidget* frame = HostFrame(parent_)) {
    ui::Rect own = GetWindowRect();
    QPoint centre = frame->frameGeometry().center();
    int left = centre.x() - own.Width() / 2;
    int top = centre.y() - own.Height() / 2;
    MoveWindow(ui::Rect{left, top, left + own.Width(), top + own.Height()});
  } else {
    CenterWindow();
  }
  HideChat();
  return true;
}

void CIMWnd::DestroyChatWindow() {
  if (!IsCreated()) return;
  destroying_ = true;
  handle_.store(platform::WindowHandle::kNone);
  // Runs the kit's own close: queued messages are handed to HandleMessage
  // (which only frees their payloads now) before the window goes.
  SendMessage(ui::kWmClose, 0, 0);
  visible_.store(false);
}

void CIMWnd::OnDuiWindowInit() {
  Init();
  handle_.store(GetHWND());
}

void CIMWnd::Init() {
  searchEdit_ = FindControl("IMWnd_searchEdit");
  friendsList_ = FindControl("FriendsList");
  conversationList_ = FindControl("ConversationList");
  recentConverBtn_ = FindControl("RecentConverBtn");
  friendsListBtn_ = FindControl("FriendsListBtn");
  friendRequestList_ = FindControl("Friend_Request_List");
  sessionName_ = FindControl("IMWnd_SessionName");
  hisRecordList_ = FindControl("HisRecordList");
  composer_ = FindControl("ChatWindow_SendrichEdit");
  tabs_ = FindControl("tabs");
  chatModule_ = FindControl("IMWnd_ChatModule");

  hisRecordList_.SetChildPadding(10);
  friendsListBtn_.Selected(false, true);
  recentConverBtn_.Selected(true, true);
  tabs_.SelectItem(kConversationsPage);
  chatModule_.SelectItem(kEmptyChatPage);
}

void CIMWnd::SetCompactControlsVisible(bool visible) {
  for (const char* name : kCompactHidden) FindControl(name).SetVisible(visible);
}

void CIMWnd::HideChatWindow() {
  platform::Trace("HideChatWindow enter!!!!!!");
  HostAppService* app = host::AcquireAppService("CIMWnd::HideChatWindow error ");
  if (app != nullptr && app->IsInSharedSession()) {
    SetCompactControlsVisible(false);
  }
  platform::Trace("HideChatWindow exit!!!!!!");
}

void CIMWnd::DisplayChatWindow() {
  SetCompactControlsVisible(true);
}

void CIMWnd::SetNetworkStatus() {
  if (tabs_ && recentConverBtn_ && friendsListBtn_) {
    if (tools_.NetworkStatus() == kNetworkDownStatus) {
      tabs_.SelectItem(kNetworkDownPage);
    } else if (tabs_.GetCurSel() == kNetworkDownPage) {
      if (recentConverBtn_.IsSelected()) {
        tabs_.SelectItem(kConversationsPage);
      } else if (friendsListBtn_.IsSelected()) {
        tabs_.SelectItem(kFriendsPage);
      }
    }
  }
  platform::Trace("SetNetworkStatus exit!!!!!!");
}

void CIMWnd::ResetChatWindow() {
  conversationList_.RemoveAll();
  friendsList_.RemoveAll();
  friendRequestList_.RemoveAll();
  hisRecordList_.RemoveAll();
  composer_.SetText(WString());
  sessionName_.SetText(WString());
  service::ForgetCurrentConversation();
  chatModule_.SelectItem(kEmptyChatPage);
}

void CIMWnd::ShowChat(bool activate) {
  ShowWindow(true, activate);
  visible_.store(IsWindowVisible());
}

void CIMWnd::HideChat() {
  ShowWindow(false);
  visible_.store(false);
}

void CIMWnd::FlashHostWindowIfMinimised() {
  QWidget* frame = HostFrame(parent_);
  if (frame != nullptr && frame->isMinimized()) QApplication::alert(frame);
}

int CIMWnd::ChatRecordHeight(int windowHeight) {
  return (5 * windowHeight - 710) / 7;  // C++ division truncates toward zero
}

void CIMWnd::ApplyChatRecordHeight() {
  ui::Control chatRecord = FindControl("ChatRecord");
  if (!chatRecord) return;
  // The toolkit takes no negative sizes; a window that small shows no history.
  int height = ChatRecordHeight(GetWindowRect().Height());
  chatRecord.SetFixedHeight(height < 0 ? 0 : height);
}

void CIMWnd::StartScrollTimer(unsigned id) {
  KillTimer(id);
  SetTimer(id, kScrollDelayMs);
}

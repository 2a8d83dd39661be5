#include "ui/main/im_wnd.h"

#include <optional>

#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/named_mutexes.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/kit/host_window.h"
#include "ui/kit/toolkit_texts.h"
#include "ui/main/drawing_routes.h"
#include "ui/main/friends_page.h"
#include "ui/main/message_view.h"
#include "ui/main/unread_dots.h"

namespace {

// The columns and buttons the compact (shared chat) layout hides.
constexpr const char* kCompactHidden[] = {
    "IMWnd_Col1",          "IMWnd_Col2",  "IMWnd_Col3",       "IMWnd_Col4",
    "IMWnd_SharedChatBtn", "ChatDrawBtn", "GroupFunctionBtn",
};

}  // namespace

CIMWnd::CIMWnd(CChatTools& tools)
    : tools_(tools),
      conversationSource_(service::MakeConversationListSource(tools)),
      friendSource_(service::MakeFriendListSource(tools)),
      groupSource_(service::MakeGroupListSource(tools)),
      requestSource_(service::MakeRequestListSource(tools)),
      composerSink_(service::MakeComposerSink(tools)),
      messageSource_(service::MakeMessageViewSource(tools)) {
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
  ui::UseChineseToolkitTexts();
  if (!Create(nullptr, u"DUIWnd", ui::WindowStyle::kTopLevel)) {
    platform::Trace("CIMWnd: the skin IMWnd.xml could not be loaded");
    return false;
  }
  handle_.store(GetHWND());
  if (std::optional<ui::Rect> frame = ui::HostWindowFrame(ui::HostWindow{parent_})) {
    ui::Rect own = GetWindowRect();
    int left = (frame->left + frame->right - 1) / 2 - own.Width() / 2;
    int top = (frame->top + frame->bottom - 1) / 2 - own.Height() / 2;
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
  conversations_->UpdateRencentConvList();
  handle_.store(GetHWND());
}

void CIMWnd::MakePanes() {
  conversations_ = std::make_unique<ui::main::ConversationListPane>(*this, controls_,
                                                                    *conversationSource_, *this);
  conversations_->SetUp();
  messageView_ = std::make_unique<ui::main::MessageView>(*this, controls_, *messageSource_,
                                                         ui::SystemDesktop());
  composer_ = std::make_unique<Composer>(*this, controls_.composer, *composerSink_);
  auto friends = std::make_unique<ui::main::FriendsPage>(
      *this, controls_, *conversations_, *this,
      ui::main::FriendsPage::Sources{*friendSource_, *groupSource_, *requestSource_},
      [this](const WString& title, const WString& text) {
        CChatMessageBox(title, text, this, CChatMessageBox::kQuestion);
        return CChatMessageBox::Confirmed();
      });
  friends->SetUp();
  friends_ = std::move(friends);
  dialogs_ = std::make_unique<ui::main::DrawingDialogRoutes>(*this, tools_, *this,
                                                             [this] { HideChatWindow(); });
}

void CIMWnd::Init() {
  // Moved by its title row, resized from its edges, like the host's own
  // captioned, sizable window.
  SetCaption(kCaptionHeight, kSizingBorder);
  controls_.LookUp(*this);
  DragAcceptFiles(true);
  MakePanes();
  controls_.hisRecordList.SetChildPadding(10);
  controls_.friendsListBtn.Selected(false, true);
  controls_.recentConverBtn.Selected(true, true);
  ui::main::SetPageButtonImages(controls_.recentConverBtn, controls_.friendsListBtn, true);
  controls_.tabs.SelectItem(kConversationsPage);
  controls_.chatModule.SelectItem(kEmptyChatPage);
}

void CIMWnd::SetCompactControlsVisible(bool visible) {
  for (const char* name : kCompactHidden) FindControl(name).SetVisible(visible);
}

void CIMWnd::HideChatWindow() {
  platform::Trace("HideChatWindow enter!!!!!!");
  if (conversations_ && conversations_->OpenSharedSession()) SetCompactControlsVisible(false);
  platform::Trace("HideChatWindow exit!!!!!!");
}

void CIMWnd::DisplayChatWindow() {
  SetCompactControlsVisible(true);
}

void CIMWnd::SetNetworkStatus() {
  ui::main::MainControls& c = controls_;
  if (c.tabs && c.recentConverBtn && c.friendsListBtn) {
    if (tools_.NetworkStatus() == kNetworkDownStatus) {
      c.tabs.SelectItem(kNetworkDownPage);
    } else if (c.tabs.GetCurSel() == kNetworkDownPage) {
      if (c.recentConverBtn.IsSelected()) {
        c.tabs.SelectItem(kConversationsPage);
      } else if (c.friendsListBtn.IsSelected()) {
        c.tabs.SelectItem(kFriendsPage);
      }
    }
  }
  platform::Trace("SetNetworkStatus exit!!!!!!");
}

void CIMWnd::ResetChatWindow() {
  if (conversations_) conversations_->rows().RemoveAll();
  if (friends_) friends_->Clear();
  if (messageView_) messageView_->Clear();
  controls_.hisRecordList.RemoveAll();
  if (composer_) composer_->Clear();
  controls_.sessionName.SetText(WString());
  service::ForgetCurrentConversation();
  controls_.chatModule.SelectItem(kEmptyChatPage);
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
  ui::FlashHostWindowIfMinimised(ui::HostWindow{parent_});
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

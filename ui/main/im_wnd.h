#pragma once
// CIMWnd: the module's one chat window (skin "IMWnd.xml"). It owns the
// frame (construction at library load, creation under the host's frame, the
// normal and compact layouts, the network-down page, hiding on close) and
// routes every notification, click, menu command and window message to the
// pane that acts on it (pane_routes.h, conversation_list_pane.h): one line
// per route, no pane's body here.
//
// Threads: everything runs on the user-interface thread except the few
// members marked "any thread", which the window port uses from the SDK's
// callback thread.

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

#include <memory>
#include <optional>

#include "platform/strings.h"
#include "platform/window_messages.h"
#include "service/panes/composer_sink.h"
#include "service/panes/conversation_list_source.h"
#include "service/panes/friend_list_source.h"
#include "service/panes/group_list_source.h"
#include "service/panes/message_view_source.h"
#include "service/panes/request_list_source.h"
#include "service/window_payloads.h"
#include "ui/kit/window_impl_base.h"
#include "ui/main/composer.h"
#include "ui/main/conversation_list_pane.h"
#include "ui/main/main_controls.h"
#include "ui/main/pane_routes.h"

class CChatTools;

// Messages the window port posts to the window when it is asked for work from
// another thread (numbers outside the module's custom range 3024..3208).
namespace ui::port_msg {
inline constexpr unsigned kShowBox = 3290;  // heap PortBoxRequest
inline constexpr unsigned kResetWindow = 3291;
inline constexpr unsigned kHideWindow = 3292;
inline constexpr unsigned kFlashHost = 3293;
}  // namespace ui::port_msg

// A message box asked for from another thread.
struct PortBoxRequest {
  int owner = 0;  // service::BoxOwner
  WString title;
  WString text;
};

// The window's own entries in the payload table: a box from another thread,
// and the control a popup menu reports to (in the second parameter).
template <>
struct service::WindowPayload<ui::port_msg::kShowBox>
    : service::PayloadEntry<PortBoxRequest, false> {};
template <>
struct service::WindowPayload<platform::msg::kMenuNotify>
    : service::PayloadEntry<void, false, ui::Control> {};

class CIMWnd : public ui::WindowImplBase, public ui::main::ChatNavigator {
 public:
  // Left-hand pages of "tabs" and the right-hand empty page.
  static constexpr int kConversationsPage = ui::main::kConversationsPage;
  static constexpr int kFriendsPage = ui::main::kFriendsPage;
  static constexpr int kNetworkDownPage = ui::main::kNetworkDownPage;
  static constexpr int kEmptyChatPage = ui::main::kEmptyChatPage;
  // The title row (search box row and session name) and the sizing frame.
  static constexpr int kCaptionHeight = 56;
  static constexpr int kSizingBorder = 4;
  static constexpr unsigned kScrollToBottomTimer = 9996;
  static constexpr unsigned kScrollToTopTimer = 9997;
  static constexpr unsigned kScrollDelayMs = 50;
  // The SDK's "disconnected" status (kTIMDisconnected).
  static constexpr uint32_t kNetworkDownStatus = 1;

  // Creates the module's named mutexes and puts the open conversation at
  // "error". No toolkit object is made here (this runs at library load).
  explicit CIMWnd(CChatTools& tools);
  ~CIMWnd() override;

  // The host frame the window belongs to: a native window id of the host
  // process (QWidget::winId), or null.
  void SetParam(void* parent);
  void* GetParent() const { return parent_; }

  // Builds the window under the parent, centred on it, hidden. False when it
  // exists already or the skin cannot be loaded.
  bool CreateChatWindow();
  // Destroys the window for good (library unload); payloads still queued are
  // freed without acting on them.
  void DestroyChatWindow();

  void OnDuiWindowInit();
  void Init();
  // Compact layout while the host runs a shared chat on a drawing.
  void HideChatWindow();
  void DisplayChatWindow();
  void SetNetworkStatus();
  // Clear the lists, empty the composer, forget the open conversation and
  // show the empty page.
  void ResetChatWindow();

  // Showing and hiding go through here so that other threads can read the
  // visibility (IsVisibleAnyThread).
  void ShowChat(bool activate = true);
  void HideChat();
  // The host's frame, when it is minimised, asks for attention.
  void FlashHostWindowIfMinimised();
  // The service's message box: owned by the chat window, the host's main
  // window or nobody (PortBoxRequest::owner).
  void ShowPortBox(const PortBoxRequest& box);

  // --- any thread ---
  platform::WindowHandle CachedHandle() const { return handle_.load(); }
  bool IsVisibleAnyThread() const { return visible_.load(); }
  bool OnWindowThread() const;

  // One-shot 50 ms scroll of the message view (kScrollToBottomTimer or
  // kScrollToTopTimer); a pending one of the same id starts again.
  void StartScrollTimer(unsigned id);

  // The fixed height of "ChatRecord" for a window height: (5h - 710) / 7,
  // truncated toward zero.
  static int ChatRecordHeight(int windowHeight);

  // Switches the panes for a conversation or a friend page (modes 0..7).
  void UpdateCovnID(const WString& convId, uint32_t convType, int mode) override;
  // The user whose card the friend list opened last (mode 7 refetches it).
  void SetShownProfileId(const WString& id) { shownProfileId_ = id; }
  const WString& ShownProfileId() const { return shownProfileId_; }

  ui::main::ConversationListPane& Conversations() { return *conversations_; }
  ui::main::MainControls& Controls() { return controls_; }
  // The composer pane (made by Init).
  Composer& ComposerPane() { return static_cast<Composer&>(*composer_); }

  // Command ids of the context menus and of the add menu.
  static constexpr unsigned kCmdDeleteConversation = 3168;
  static constexpr unsigned kCmdFriendSendMessage = 3170;
  static constexpr unsigned kCmdDeleteFriend = 3171;
  static constexpr unsigned kCmdAddFriend = 3172;
  static constexpr unsigned kCmdCreateGroup = 3173;
  static constexpr unsigned kCmdGroupSendMessage = 3174;
  static constexpr unsigned kCmdQuitGroup = 3175;

 protected:
  std::string GetSkinFile() const override { return "IMWnd.xml"; }
  std::string GetWindowClassName() const override { return "CIMWnd"; }
  void Notify(ui::TNotifyUI& msg) override;
  ui::LRESULT HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) override;
  ui::LRESULT HandleCustomMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam,
                                  bool& bHandled) override;
  ui::LRESULT OnClose(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam, bool& bHandled) override;

 private:
  // Builds the panes; later panes put their own route objects in here.
  void MakePanes();
  void OnClick(ui::TNotifyUI& msg);
  void OnItemClick(ui::TNotifyUI& msg);
  void OnTextChanged(ui::TNotifyUI& msg);
  void OnContextMenu(ui::TNotifyUI& msg);
  void OnCommand(unsigned commandId);
  // The consumed custom messages; false when `uMsg` is not one of them.
  bool HandleServiceMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam);
  bool HandleListMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam);
  // Input and the messages that the kit's default handling sees too after
  // they were handled; the message's result, or none when it is not one of them.
  std::optional<ui::LRESULT> HandleInputMessage(unsigned uMsg, ui::WPARAM wParam,
                                                ui::LPARAM lParam);
  void RefreshMessageView(int mode);
  void OnWheel(ui::WPARAM wParam, ui::LPARAM lParam);
  void LoadConversationMessages();
  bool HandlePortMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam);
  // Frees the payload of a message no handler acts on (or that arrives while
  // the window is going away); false when `uMsg` carries none.
  static bool DropPayload(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam);
  void OnConversationGone(const WString& convId);
  void ApplyChatRecordHeight();
  void SetCompactControlsVisible(bool visible);

  CChatTools& tools_;
  void* parent_ = nullptr;
  std::atomic<platform::WindowHandle> handle_{platform::WindowHandle::kNone};
  std::atomic<bool> visible_{false};
  std::atomic<std::thread::id> windowThread_{};
  bool destroying_ = false;

  // Looked up by Init; each may be absent.
  ui::main::MainControls controls_;
  WString shownProfileId_;
  std::optional<uint64_t> lastPageFetchMs_;
  ui::Point rightClickPoint_;

  std::unique_ptr<service::ConversationListSource> conversationSource_;
  std::unique_ptr<service::FriendListSource> friendSource_;
  std::unique_ptr<service::GroupListSource> groupSource_;
  std::unique_ptr<service::RequestListSource> requestSource_;
  std::unique_ptr<service::ComposerSink> composerSink_;
  std::unique_ptr<service::MessageViewSource> messageSource_;
  std::unique_ptr<ui::main::ConversationListPane> conversations_;
  std::unique_ptr<ui::main::MessageViewRoutes> messageView_;
  std::unique_ptr<ui::main::ComposerRoutes> composer_;
  std::unique_ptr<ui::main::FriendListRoutes> friends_;
  std::unique_ptr<ui::main::DialogRoutes> dialogs_;
};

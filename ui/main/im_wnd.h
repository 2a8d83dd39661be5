#pragma once
// CIMWnd: the module's one chat window (skin "IMWnd.xml"). This file holds
// its frame: construction at library load, creation under the host's frame,
// start-up of the skin, the normal and compact (shared chat) layouts, the
// network-down page, hiding on close, and the custom messages that the
// service layer posts to it. The lists, the message view and the composer
// add their own handlers.
//
// Threads: everything runs on the user-interface thread except the few
// members marked "any thread", which the window port uses from the SDK's
// callback thread.

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

#include "platform/strings.h"
#include "platform/window_messages.h"
#include "ui/kit/window_impl_base.h"

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

class CIMWnd : public ui::WindowImplBase {
 public:
  // Left-hand pages of "tabs" and the right-hand empty page.
  static constexpr int kConversationsPage = 0;
  static constexpr int kFriendsPage = 1;
  static constexpr int kNetworkDownPage = 3;
  static constexpr int kEmptyChatPage = 4;
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

 protected:
  std::string GetSkinFile() const override { return "IMWnd.xml"; }
  std::string GetWindowClassName() const override { return "CIMWnd"; }
  void Notify(ui::TNotifyUI& msg) override;
  ui::LRESULT HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) override;
  ui::LRESULT HandleCustomMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam,
                                  bool& bHandled) override;
  ui::LRESULT OnClose(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam, bool& bHandled) override;

 private:
  void OnClick(ui::TNotifyUI& msg);
  // The consumed custom messages; false when `uMsg` is not one of them.
  bool HandleServiceMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam);
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
  ui::Control searchEdit_;
  ui::Control friendsList_;
  ui::Control conversationList_;
  ui::Control recentConverBtn_;
  ui::Control friendsListBtn_;
  ui::Control friendRequestList_;
  ui::Control sessionName_;
  ui::Control hisRecordList_;
  ui::Control composer_;
  ui::Control tabs_;
  ui::Control chatModule_;
};

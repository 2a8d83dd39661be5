#pragma once
// The base of every skinned window: the window's look comes from a skin file,
// its controls are found by name, and its behaviour is a Notify handler plus
// a window-message handler. Window code derives from this class and never
// sees the toolkit underneath.
//
// Messages reach HandleMessage on the window's thread: posted ones through
// platform::PostMessage(GetHWND(), ...) from any thread, timers as kWmTimer,
// closing as kWmClose, losing activation as kWmKillFocus, and a few input
// events (kWmSize, kWmKeyDown, kWmLButtonDblClk, kWmMouseWheel) whose
// non-zero result consumes the input.

#include <memory>
#include <string>
#include <string_view>

#include "platform/window_messages.h"
#include "ui/kit/control.h"
#include "ui/kit/host_window.h"
#include "ui/kit/notify.h"

namespace ui {

using LRESULT = platform::LPARAM;

// Window message numbers the kit delivers.
inline constexpr unsigned kWmSize = 5;  // lParam: width | height << 16
inline constexpr unsigned kWmKillFocus = 8;
inline constexpr unsigned kWmClose = 16;  // wParam: the close code
inline constexpr unsigned kWmKeyDown =
    256;  // wParam: key code ('A'..'Z', '0'..'9', kVk*), lParam: kKey* modifiers
inline constexpr unsigned kWmCommand = 273;        // wParam: command id
inline constexpr unsigned kWmTimer = 275;          // wParam: timer id
inline constexpr unsigned kWmLButtonDblClk = 515;  // lParam: x | y << 16 (window coordinates)
inline constexpr unsigned kWmMouseWheel = 522;  // wParam: delta << 16, lParam: x | y << 16 (window)
// Files dropped on a window that accepts them (DragAcceptFiles). wParam: a
// const std::vector<WString>* of local paths, valid during the call only;
// lParam: x | y << 16 (window coordinates).
inline constexpr unsigned kWmDropFiles = 563;

inline constexpr platform::LPARAM kKeyCtrl = 1;
inline constexpr platform::LPARAM kKeyShift = 2;
inline constexpr platform::LPARAM kKeyAlt = 4;
inline constexpr platform::WPARAM kVkReturn = 13;
inline constexpr platform::WPARAM kVkEscape = 27;

inline platform::LPARAM MakeLParam(int low, int high) {
  return static_cast<platform::LPARAM>((static_cast<std::uint32_t>(high) << 16) |
                                       (static_cast<std::uint32_t>(low) & 0xFFFF));
}
inline int LowWord(platform::LPARAM v) {
  return static_cast<std::int16_t>(v & 0xFFFF);
}
inline int HighWord(platform::LPARAM v) {
  return static_cast<std::int16_t>((v >> 16) & 0xFFFF);
}

enum class WindowStyle {
  kPopupTool,  // frameless tool window owned by its owner (dialogs)
  kTopLevel,   // frameless top-level window
};

class WindowHost;  // kit-internal

class WindowImplBase {
 public:
  WindowImplBase();
  virtual ~WindowImplBase();
  WindowImplBase(const WindowImplBase&) = delete;
  WindowImplBase& operator=(const WindowImplBase&) = delete;

  // Builds the window from its skin, registers its handle, runs InitWindow
  // and then sends "windowinit". Returns false (after a trace) when the skin
  // cannot be loaded; the object is then windowless. `owner` may be null.
  bool Create(WindowImplBase* owner, const WString& windowName,
              WindowStyle style = WindowStyle::kPopupTool);
  // The same, owned by a window of the host application (a box that belongs
  // to the host rather than to the chat window); an id that finds no window
  // makes a window without owner.
  bool Create(HostWindow owner, const WString& windowName,
              WindowStyle style = WindowStyle::kPopupTool);
  bool IsCreated() const;

  // Runs the window modally; returns the code it was closed with (-1 when it
  // has no window).
  int ShowModal();
  void ShowWindow(bool show = true, bool takeFocus = true);
  bool IsWindowVisible() const;
  // Posts kWmClose with the code; the window is destroyed when that message
  // reaches the default handling (unless OnClose handles it).
  void Close(int code = 1);
  void CenterWindow();
  Rect GetWindowRect() const;  // screen coordinates
  void MoveWindow(const Rect& screenRect);
  void ResizeClient(int width, int height);
  // Files dragged from outside onto any part of the window are taken and
  // reported as kWmDropFiles instead of reaching the control under the mouse.
  void DragAcceptFiles(bool accept);

  platform::WindowHandle GetHWND() const;
  // A frameless window is moved by dragging its caption (the top `height`
  // pixels, outside controls that take the mouse) and resized from a
  // `border` pixels wide sizing frame (0: not resizable).
  void SetCaption(int height, int border);
  WindowImplBase* GetOwner() const { return owner_; }

  Control FindControl(std::string_view name) const;
  // The deepest control at a point in window coordinates.
  Control FindControlAt(Point point) const;
  // A point of the window's client area in screen coordinates.
  Point ClientToScreen(Point point) const;
  // A list item or sub-window built from a template skin (file name relative
  // to the skin folder). It belongs to this window until added to a list;
  // empty on failure.
  Control CreateFromSkin(std::string_view skinFile);

  // Delivers a notification to Notify as if the control had sent it.
  void SendNotify(const Control& sender, std::string_view type, WPARAM wParam = 0,
                  LPARAM lParam = 0);
  // Runs HandleMessage now, on the calling (window) thread.
  LRESULT SendMessage(unsigned msg, WPARAM wParam = 0, LPARAM lParam = 0);

  // One-shot precise timer: kWmTimer with the id after `milliseconds`.
  // Setting an id that is pending restarts it.
  void SetTimer(unsigned id, unsigned milliseconds);
  void KillTimer(unsigned id);
  bool IsTimerPending(unsigned id) const;

 protected:
  // Relative to the resource root; backslashes allowed.
  virtual std::string GetSkinFolder() const { return "DuiLibRes\\skin\\"; }
  virtual std::string GetSkinFile() const = 0;
  virtual std::string GetWindowClassName() const = 0;

  virtual void InitWindow() {}
  virtual void Notify(TNotifyUI& msg);
  virtual LRESULT HandleMessage(unsigned uMsg, WPARAM wParam, LPARAM lParam);
  virtual LRESULT HandleCustomMessage(unsigned uMsg, WPARAM wParam, LPARAM lParam, bool& bHandled);
  virtual LRESULT OnClose(unsigned uMsg, WPARAM wParam, LPARAM lParam, bool& bHandled);
  // The window lost activation. The three usual variants: leave bHandled
  // false (the base's), set it and return 0 (ignore), or Close(1) (close).
  virtual LRESULT OnKillFocus(unsigned uMsg, WPARAM wParam, LPARAM lParam, bool& bHandled);
  // The window is gone (its handle no longer accepts posts). The object may
  // delete itself here; nothing touches it afterwards.
  virtual void OnFinalMessage() {}

 private:
  friend class WindowHost;
  friend class PopupMenu;
  void DestroyWindow(int code);
  bool CreateOwned(WindowImplBase* owner, HostWindow hostOwner, const WString& windowName,
                   WindowStyle style);

  WindowImplBase* owner_ = nullptr;
  HostWindow hostOwner_;        // when the owner is the host's
  WindowHost* host_ = nullptr;  // owned; see the destructor
  std::shared_ptr<bool> alive_;
};

}  // namespace ui

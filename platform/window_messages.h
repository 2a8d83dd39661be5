#pragma once
// Window handles, thread-safe posting, and the module's custom window
// message numbers (WM_USER + 2000 and upwards, plus the upload report).
//
// A handle is a number registered with a delivery function. PostMessage
// works from any thread; once the window is unregistered it returns false
// and leaves any heap payload with the caller, who then owns it.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace platform {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

// Never reused within a process; 0 is no window.
enum class WindowHandle : std::uint64_t { kNone = 0 };

struct WindowMessage {
  unsigned msg = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
};

// Called with the registry's lock held: it must only enqueue, quickly, and
// must not post or unregister itself.
using MessageDelivery = std::function<void(const WindowMessage&)>;

WindowHandle RegisterWindow(MessageDelivery deliver);
// After this returns no post reaches the delivery function any more.
void UnregisterWindow(WindowHandle handle);
bool IsWindow(WindowHandle handle);
bool PostMessage(WindowHandle handle, unsigned msg, WPARAM wParam, LPARAM lParam);

// A window that is only a message queue: tests and headless code pump it by
// hand on whichever thread plays the window thread.
class QueuedWindow {
 public:
  QueuedWindow();
  ~QueuedWindow();
  QueuedWindow(const QueuedWindow&) = delete;
  QueuedWindow& operator=(const QueuedWindow&) = delete;

  WindowHandle handle() const { return handle_; }
  // Unregisters: later posts fail. Messages already queued stay queued.
  void Destroy();

  std::optional<WindowMessage> Take();
  std::optional<WindowMessage> WaitFor(std::chrono::milliseconds timeout);
  std::vector<WindowMessage> TakeAll();
  size_t Pending() const;

 private:
  WindowHandle handle_;
  mutable std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<WindowMessage> queue_;
};

// Custom window messages of the chat window.
namespace msg {
inline constexpr unsigned kUploadFinished = 1025;      // WM_USER + 1: drawing upload worker
inline constexpr unsigned kSdkEvent = 3024;            // heap SdkEventRecord
inline constexpr unsigned kRefreshMessageView = 3025;  // mode 0..4
inline constexpr unsigned kFriendRemarkChanged = 3149;
inline constexpr unsigned kEmoticonChosen = 3153;
inline constexpr unsigned kMenuNotify = 3154;
inline constexpr unsigned kComposerCut = 3156;
inline constexpr unsigned kComposerPaste = 3158;
inline constexpr unsigned kMenuSaveAs = 3161;
inline constexpr unsigned kOpenAddFriend = 3162;
inline constexpr unsigned kOpenCreateGroup = 3163;
inline constexpr unsigned kTransferStateChanged = 3164;
inline constexpr unsigned kFriendRequestsChanged = 3166;
inline constexpr unsigned kFriendRequestAccepted = 3167;
inline constexpr unsigned kConversationDatum = 3178;  // heap WString or 0
inline constexpr unsigned kMessageBoxAnswered = 3179;
inline constexpr unsigned kReloadGroupsFromHost = 3181;
inline constexpr unsigned kFriendRequestHandled = 3182;
inline constexpr unsigned kFriendListChanged = 3183;
inline constexpr unsigned kRecentConversationsChanged = 3184;
inline constexpr unsigned kGroupListChanged = 3185;
inline constexpr unsigned kFriendRequestListChanged = 3186;
inline constexpr unsigned kConversationSummaryChanged = 3187;
inline constexpr unsigned kNetworkStatusChanged = 3188;
inline constexpr unsigned kLoadConversationHistory = 3190;
inline constexpr unsigned kUnreadMarker = 3191;
inline constexpr unsigned kConversationLogoChanged = 3192;
inline constexpr unsigned kConversationNameChanged = 3193;  // heap WString id, heap WString name
inline constexpr unsigned kMoveWindow = 3195;               // heap rectangle
inline constexpr unsigned kMessageListArrived = 3196;       // heap std::string (JSON)
inline constexpr unsigned kFriendDeleted = 3197;            // heap record
inline constexpr unsigned kDeleteShownFriend = 3203;
inline constexpr unsigned kCommitRemarkEdit = 3204;
inline constexpr unsigned kClearComposer = 3205;
inline constexpr unsigned kRefreshNewFriendEntry = 3206;
inline constexpr unsigned kDrawingSyncNotice = 3208;
}  // namespace msg

}  // namespace platform

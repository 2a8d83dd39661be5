// The service object itself: window attachment, ClearResource and the cache
// accessors shared by every concern.
#include "service/chat_tools.h"

#include <algorithm>

#include "platform/trace.h"
#include "service/callback_owner.h"
#include "service/current_conversation.h"
#include "store/chat_db.h"

namespace {

// Stands in until the window exists: posts go nowhere, boxes are traced.
class NoWindow final : public service::WindowPort {
 public:
  platform::WindowHandle ChatWindow() const override { return platform::WindowHandle::kNone; }
  void ShowMessageBox(service::BoxOwner, const WString& title, const WString& text) override {
    platform::Trace("no chat window for the box %s: %s", platform::Utf16ToUtf8(title).c_str(),
                    platform::Utf16ToUtf8(text).c_str());
  }
  bool Confirm(const WString& title, const WString& text) override {
    ShowMessageBox(service::BoxOwner::kNone, title, text);
    return false;
  }
  void ResetWindow() override {}
  bool IsWindowVisible() const override { return false; }
  void HideWindow() override {}
  void FlashHostWindowIfMinimised() override {}
};

NoWindow& NoWindowPort() {
  static NoWindow port;
  return port;
}

}  // namespace

CChatTools::CChatTools() = default;

namespace service {

std::atomic<CChatTools*>& IdCallbackOwner() {
  static std::atomic<CChatTools*> owner{nullptr};
  return owner;
}

}  // namespace service

CChatTools::~CChatTools() {
  UnregisterSdkCallbacks();
  CChatTools* self = this;
  service::IdCallbackOwner().compare_exchange_strong(self, nullptr);
}

CChatTools& CChatTools::Instance() {
  // Lives until the process ends: SDK callbacks may still name it at unload.
  static auto* tools = new CChatTools;
  return *tools;
}

void CChatTools::AttachWindow(service::WindowPort* window) {
  window_.store(window);
}

service::WindowPort& CChatTools::Window() const {
  service::WindowPort* window = window_.load();
  return window != nullptr ? *window : NoWindowPort();
}

platform::WindowHandle CChatTools::ChatWindow() const {
  return Window().ChatWindow();
}

WString CChatTools::UserId() const {
  std::lock_guard lock(cache_mutex_);
  return user_id_;
}

void CChatTools::ClearResource() {
  platform::Trace("ClearResource enter!!!!!!");
  {
    std::lock_guard lock(cache_mutex_);
    unread_events_ = 0;
    conv_list_count_ = 0;
    recent_.clear();
    conversations_.clear();
    new_messages_.clear();
    unread_.clear();
    groups_.clear();
    host_groups_.clear();
    joined_groups_known_ = false;
    group_members_.clear();
    friends_.clear();
    profiles_.clear();
    pending_requests_.clear();
    pendency_seq_ = 0;
    user_id_.clear();
    first_list_flag_ = 1;
    first_list_companion_ = 0;
  }
  {
    std::lock_guard lock(download_mutex_);
    downloads_.clear();
  }
  {
    std::lock_guard lock(send_mutex_);
    pending_sends_.clear();
  }
  // The open conversation belongs to the signed-out user as well.
  service::ForgetCurrentConversation();
  CChatDb& db = CChatDb::Instance();
  if (db.IsOpen()) db.Close();
  platform::Trace("ClearResource exit!!!!!!");
}

bool CChatTools::IsFirstConvList() const {
  std::lock_guard lock(cache_mutex_);
  return first_list_flag_ != 0;
}

std::vector<RecentConversation> CChatTools::RecentConversations() const {
  std::lock_guard lock(cache_mutex_);
  return {recent_.begin(), recent_.end()};
}

size_t CChatTools::RecentCount() const {
  std::lock_guard lock(cache_mutex_);
  return recent_.size();
}

size_t CChatTools::ConversationCount() const {
  std::lock_guard lock(cache_mutex_);
  return conversations_.size();
}

bool CChatTools::HasConversation(const WString& convId) const {
  std::lock_guard lock(cache_mutex_);
  return conversations_.count(convId) != 0;
}

std::optional<ConversationInfo_Stru> CChatTools::FindConversation(const WString& convId) const {
  std::lock_guard lock(cache_mutex_);
  auto it = conversations_.find(convId);
  if (it == conversations_.end()) return std::nullopt;
  return it->second;
}

void CChatTools::AppendConversationMessage(const WString& convId, const MessageStru& message) {
  std::lock_guard lock(cache_mutex_);
  ConversationInfo_Stru& conv = conversations_[convId];
  conv.conv_id = convId;
  conv.conv_type = message.conv_type;
  conv.has_last_msg = true;
  conv.last_msg = message;
  new_messages_[convId].push_back(message);
}

bool CChatTools::IsUnread(const WString& convId) const {
  std::lock_guard lock(cache_mutex_);
  return unread_.count(convId) != 0;
}

void CChatTools::SetUnread(const WString& convId, bool unread) {
  std::lock_guard lock(cache_mutex_);
  if (unread) {
    unread_.insert(convId);
  } else {
    unread_.erase(convId);
  }
}

std::set<WString> CChatTools::UnreadIds() const {
  std::lock_guard lock(cache_mutex_);
  return unread_;
}

size_t CChatTools::NewMessageCount(const WString& convId) const {
  std::lock_guard lock(cache_mutex_);
  auto it = new_messages_.find(convId);
  return it == new_messages_.end() ? 0 : it->second.size();
}

std::vector<MessageStru> CChatTools::TakeNewMessages(const WString& convId, size_t max) {
  std::lock_guard lock(cache_mutex_);
  auto it = new_messages_.find(convId);
  if (it == new_messages_.end()) return {};
  std::vector<MessageStru>& cached = it->second;
  size_t count = std::min(max, cached.size());
  std::vector<MessageStru> taken(std::make_move_iterator(cached.begin()),
                                 std::make_move_iterator(cached.begin() + count));
  cached.erase(cached.begin(), cached.begin() + count);
  if (cached.empty()) new_messages_.erase(it);
  return taken;
}

std::vector<FriendsList_Stru> CChatTools::Friends() const {
  std::lock_guard lock(cache_mutex_);
  return friends_;
}

std::optional<FriendsList_Stru> CChatTools::FindFriend(const WString& id) const {
  std::lock_guard lock(cache_mutex_);
  for (const FriendsList_Stru& f : friends_) {
    if (f.identifier == id) return f;
  }
  return std::nullopt;
}

WString CChatTools::FriendDisplayName(const FriendsList_Stru& friendRecord) {
  if (!friendRecord.remark.empty()) return friendRecord.remark;
  return friendRecord.profile.nick_name;
}

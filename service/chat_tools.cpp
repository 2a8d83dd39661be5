// The service object itself: window attachment, ClearResource and the cache
// accessors shared by every concern.
#include "service/chat_tools.h"

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

CChatTools::CChatTools() : CChatTools(CChatDb::Instance()) {}

CChatTools::CChatTools(CChatDb& store) : store_(store) {}

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
  return session_.UserId();
}

void CChatTools::ClearResource() {
  platform::Trace("ClearResource enter!!!!!!");
  session_.End();
  platform::Trace("ClearResource exit!!!!!!");
}

void CChatTools::DeleteStoredHistory(const WString& convId) {
  store_.RunSql(UserId(), convId);
}

void CChatTools::ClearCaches() {
  recent_.Clear();
  groups_.Clear();
  friends_.Clear();
  sends_.Clear();
  downloads_.Clear();
  roster_.Clear();
  // The open conversation belongs to the signed-out user as well.
  service::ForgetCurrentConversation();
  if (store_.IsOpen()) store_.Close();
}

bool CChatTools::IsFirstConvList() const {
  return recent_.IsFirstList();
}

std::vector<RecentConversation> CChatTools::RecentConversations() const {
  return recent_.List();
}

std::vector<RecentConversationKey> CChatTools::RecentConversationKeys() const {
  return recent_.Keys();
}

std::optional<RecentConversation> CChatTools::FindRecentConv(const WString& convId) const {
  return recent_.FindRecent(convId);
}

size_t CChatTools::RecentCount() const {
  return recent_.Count();
}

size_t CChatTools::ConversationCount() const {
  return recent_.ConversationCount();
}

bool CChatTools::HasConversation(const WString& convId) const {
  return recent_.Has(convId);
}

std::optional<ConversationInfo_Stru> CChatTools::FindConversation(const WString& convId) const {
  return recent_.Find(convId);
}

void CChatTools::AppendConversationMessage(const WString& convId, const MessageStru& message) {
  recent_.AppendMessage(convId, message);
}

bool CChatTools::IsUnread(const WString& convId) const {
  return recent_.IsUnread(convId);
}

void CChatTools::SetUnread(const WString& convId, bool unread) {
  recent_.SetUnread(convId, unread);
}

std::set<WString> CChatTools::UnreadIds() const {
  return recent_.UnreadIds();
}

size_t CChatTools::NewMessageCount(const WString& convId) const {
  return recent_.NewMessageCount(convId);
}

std::vector<MessageStru> CChatTools::TakeNewMessages(const WString& convId, size_t max) {
  return recent_.TakeNewMessages(convId, max);
}

std::vector<FriendsList_Stru> CChatTools::Friends() const {
  return friends_.Friends();
}

void CChatTools::VisitFriends(const std::function<void(const FriendsList_Stru&)>& visit) const {
  friends_.VisitFriends(visit);
}

std::optional<FriendsList_Stru> CChatTools::FindFriend(const WString& id) const {
  return friends_.FindFriend(id);
}

WString CChatTools::FriendDisplayName(const FriendsList_Stru& friendRecord) {
  if (!friendRecord.remark.empty()) return friendRecord.remark;
  return friendRecord.profile.nick_name;
}

uint32_t CChatTools::NextLocalId() {
  return sends_.NextLocalId();
}

std::optional<MessageStru> CChatTools::FindPendingSend(uint32_t localId) const {
  return sends_.Find(localId);
}

std::optional<UploadProgress> CChatTools::FindUpload(uint32_t localId) const {
  return sends_.Upload(localId);
}

std::vector<MessageStru> CChatTools::StoredMessages(const WString& convId, int limit) const {
  std::vector<MessageStru> rows;
  store_.QueryCurrentConvMsg(convId, UserId(), limit, rows);
  return rows;
}

#include "service/parts/recent_conversations.h"

#include <algorithm>
#include <iterator>

namespace service {
namespace {

// A record the module adds itself (a new message, or the user).
RecentConversation AddedRecord(const WString& convId, uint32_t convType) {
  RecentConversation record;
  record.info.conv_id = convId;
  record.info.conv_type = convType;
  record.opened = 1;
  record.listed = 1;
  return record;
}

}  // namespace

void RecentConversations::Clear() {
  std::lock_guard lock(mutex_);
  recent_.clear();
  conversations_.clear();
  new_messages_.clear();
  unread_.clear();
  unread_events_ = 0;
  conv_list_count_ = 0;
  first_list_flag_ = 1;
  first_list_companion_ = 0;
}

std::vector<RecentConversation> RecentConversations::List() const {
  std::lock_guard lock(mutex_);
  return {recent_.begin(), recent_.end()};
}

std::vector<RecentConversationKey> RecentConversations::Keys() const {
  std::lock_guard lock(mutex_);
  std::vector<RecentConversationKey> keys;
  keys.reserve(recent_.size());
  for (const RecentConversation& r : recent_) keys.push_back({r.info.conv_id, r.info.conv_type});
  return keys;
}

size_t RecentConversations::Count() const {
  std::lock_guard lock(mutex_);
  return recent_.size();
}

bool RecentConversations::InRecentLocked(const WString& convId) const {
  return std::any_of(recent_.begin(), recent_.end(),
                     [&](const RecentConversation& r) { return r.info.conv_id == convId; });
}

bool RecentConversations::AddRecent(const WString& convId, uint32_t convType) {
  std::lock_guard lock(mutex_);
  if (InRecentLocked(convId)) return false;
  recent_.push_back(AddedRecord(convId, convType));
  return true;
}

std::optional<uint32_t> RecentConversations::RemoveRecent(const WString& convId) {
  std::optional<RecentConversation> taken = TakeRecent(convId);
  if (!taken) return std::nullopt;
  return taken->info.conv_type;
}

std::optional<RecentConversation> RecentConversations::FindRecent(const WString& convId) const {
  std::lock_guard lock(mutex_);
  auto it = std::find_if(recent_.begin(), recent_.end(),
                         [&](const RecentConversation& r) { return r.info.conv_id == convId; });
  if (it == recent_.end()) return std::nullopt;
  return *it;
}

std::optional<RecentConversation> RecentConversations::TakeRecent(const WString& convId) {
  std::lock_guard lock(mutex_);
  auto it = std::find_if(recent_.begin(), recent_.end(),
                         [&](const RecentConversation& r) { return r.info.conv_id == convId; });
  if (it == recent_.end()) return std::nullopt;
  RecentConversation taken = std::move(*it);
  recent_.erase(it);
  return taken;
}

void RecentConversations::InsertRecentFront(RecentConversation record) {
  std::lock_guard lock(mutex_);
  recent_.push_front(std::move(record));
}

void RecentConversations::ReplaceRecent(std::vector<RecentConversation> rebuilt,
                                        std::vector<ConversationInfo_Stru> withLastMessage) {
  std::lock_guard lock(mutex_);
  recent_.assign(std::make_move_iterator(rebuilt.begin()), std::make_move_iterator(rebuilt.end()));
  for (ConversationInfo_Stru& conv : withLastMessage) {
    WString id = conv.conv_id;
    conversations_[id] = std::move(conv);
  }
  ++conv_list_count_;
  if (!recent_.empty()) first_list_flag_ = 0;
}

bool RecentConversations::IsFirstList() const {
  std::lock_guard lock(mutex_);
  return first_list_flag_ != 0;
}

size_t RecentConversations::ConversationCount() const {
  std::lock_guard lock(mutex_);
  return conversations_.size();
}

bool RecentConversations::Has(const WString& convId) const {
  std::lock_guard lock(mutex_);
  return conversations_.count(convId) != 0;
}

std::optional<ConversationInfo_Stru> RecentConversations::Find(const WString& convId) const {
  std::lock_guard lock(mutex_);
  auto it = conversations_.find(convId);
  if (it == conversations_.end()) return std::nullopt;
  return it->second;
}

AcceptedBatch RecentConversations::Accept(const WString& convId, uint32_t convType,
                                          std::vector<MessageStru> messages, bool countUnread) {
  AcceptedBatch batch;
  if (messages.empty()) return batch;
  uint64_t peerMessages = 0;
  for (const MessageStru& message : messages) peerMessages += message.is_from_self ? 0 : 1;

  std::lock_guard lock(mutex_);
  batch.known = conversations_.count(convId) != 0 || InRecentLocked(convId);
  auto [it, added] = conversations_.try_emplace(convId);
  batch.registered = added;
  ConversationInfo_Stru& conv = it->second;
  conv.conv_id = convId;
  conv.conv_type = convType;
  conv.has_last_msg = true;
  conv.last_msg = messages.back();
  conv.active_time = messages.back().server_time;

  if (!InRecentLocked(convId)) {
    recent_.push_back(AddedRecord(convId, convType));
    batch.added_recent = true;
  }
  for (RecentConversation& recent : recent_) {
    if (recent.info.conv_id != convId) continue;
    if (countUnread) recent.info.unread_num += peerMessages;
    recent.info.active_time = conv.active_time;
    recent.info.has_last_msg = true;
    recent.info.last_msg = conv.last_msg;
  }
  if (countUnread && peerMessages > 0) unread_.insert(convId);
  ++unread_events_;

  std::vector<MessageStru>& queued = new_messages_[convId];
  queued.insert(queued.end(), std::make_move_iterator(messages.begin()),
                std::make_move_iterator(messages.end()));
  return batch;
}

void RecentConversations::AppendMessage(const WString& convId, const MessageStru& message) {
  std::lock_guard lock(mutex_);
  ConversationInfo_Stru& conv = conversations_[convId];
  conv.conv_id = convId;
  conv.conv_type = message.conv_type;
  conv.has_last_msg = true;
  conv.last_msg = message;
  new_messages_[convId].push_back(message);
}

void RecentConversations::QueueMessage(const WString& convId, MessageStru message) {
  std::lock_guard lock(mutex_);
  new_messages_[convId].push_back(std::move(message));
}

size_t RecentConversations::NewMessageCount(const WString& convId) const {
  std::lock_guard lock(mutex_);
  auto it = new_messages_.find(convId);
  return it == new_messages_.end() ? 0 : it->second.size();
}

std::vector<MessageStru> RecentConversations::TakeNewMessages(const WString& convId, size_t max) {
  std::lock_guard lock(mutex_);
  auto it = new_messages_.find(convId);
  if (it == new_messages_.end()) return {};
  std::vector<MessageStru>& queued = it->second;
  size_t count = std::min(max, queued.size());
  std::vector<MessageStru> taken(std::make_move_iterator(queued.begin()),
                                 std::make_move_iterator(queued.begin() + count));
  queued.erase(queued.begin(), queued.begin() + count);
  if (queued.empty()) new_messages_.erase(it);
  return taken;
}

bool RecentConversations::IsUnread(const WString& convId) const {
  std::lock_guard lock(mutex_);
  return unread_.count(convId) != 0;
}

void RecentConversations::SetUnread(const WString& convId, bool unread) {
  std::lock_guard lock(mutex_);
  if (unread) {
    unread_.insert(convId);
  } else {
    unread_.erase(convId);
  }
}

std::set<WString> RecentConversations::UnreadIds() const {
  std::lock_guard lock(mutex_);
  return unread_;
}

}  // namespace service

#pragma once
// The recent conversations: the list the conversation pane shows, the
// conversation set with each conversation's last message, the messages
// received and not yet shown, and the unread marks. One lock, held only
// inside these calls; readers get copies.

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <vector>

#include "platform/strings.h"
#include "records/conversation_records.h"
#include "records/message_records.h"
#include "service/service_records.h"

namespace service {

// What taking in a batch of one conversation's messages found.
struct AcceptedBatch {
  bool registered = false;  // new in the conversation set (its logo is drawn)
  bool known = false;       // in the set or the recent list before
  bool added_recent = false;
};

class RecentConversations {
 public:
  void Clear();

  std::vector<RecentConversation> List() const;
  // The list's ids and types, front first: no message is copied.
  std::vector<RecentConversationKey> Keys() const;
  size_t Count() const;
  // True when the id was not in the list and was appended.
  bool AddRecent(const WString& convId, uint32_t convType);
  // Removes the record; its type when it was there.
  std::optional<uint32_t> RemoveRecent(const WString& convId);
  std::optional<RecentConversation> TakeRecent(const WString& convId);
  // A copy of one record, the list left as it is.
  std::optional<RecentConversation> FindRecent(const WString& convId) const;
  void InsertRecentFront(RecentConversation record);
  // A conversation list from the SDK replaces the recent list (never merged)
  // and registers the conversations that came with a last message.
  void ReplaceRecent(std::vector<RecentConversation> rebuilt,
                     std::vector<ConversationInfo_Stru> withLastMessage);
  bool IsFirstList() const;

  bool Has(const WString& convId) const;
  size_t ConversationCount() const;
  std::optional<ConversationInfo_Stru> Find(const WString& convId) const;

  // A batch of one conversation's messages, oldest first: registers the
  // conversation with the newest as its last message, queues them for the
  // view and, with `countUnread`, counts the peer's as unread.
  AcceptedBatch Accept(const WString& convId, uint32_t convType, std::vector<MessageStru> messages,
                       bool countUnread);
  // A message the module adds itself becomes the last message and is queued.
  void AppendMessage(const WString& convId, const MessageStru& message);
  // Queued for the view only (a group reminder).
  void QueueMessage(const WString& convId, MessageStru message);
  size_t NewMessageCount(const WString& convId) const;
  std::vector<MessageStru> TakeNewMessages(const WString& convId, size_t max);

  bool IsUnread(const WString& convId) const;
  void SetUnread(const WString& convId, bool unread);
  std::set<WString> UnreadIds() const;

 private:
  bool InRecentLocked(const WString& convId) const;

  mutable std::mutex mutex_;
  std::list<RecentConversation> recent_;
  std::map<WString, ConversationInfo_Stru> conversations_;
  std::map<WString, std::vector<MessageStru>> new_messages_;
  std::set<WString> unread_;
  uint32_t unread_events_ = 0;    // new-message batches since sign-in
  uint32_t conv_list_count_ = 0;  // conversation lists handled since sign-in
  uint32_t first_list_flag_ = 1;
  uint32_t first_list_companion_ = 0;
};

}  // namespace service

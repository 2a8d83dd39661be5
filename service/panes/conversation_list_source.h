#pragma once
// What the conversation list pane reads from the service layer and asks of
// it: nothing more, so the pane can be driven by a fake in tests.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/strings.h"
#include "platform/window_messages.h"
#include "records/conversation_records.h"
#include "service/service_records.h"

class CChatTools;

namespace service {

class ConversationListSource {
 public:
  struct Picture {
    WString path;  // a file, or a skin-relative default picture
    WString name;
  };

  virtual ~ConversationListSource() = default;

  virtual bool IsSignedIn() const = 0;
  // The recent list or the conversation set holds anything.
  virtual bool HasConversations() const = 0;
  // The recent conversations, front first: which they are, not their data.
  virtual std::vector<RecentConversationKey> RecentKeys() const = 0;
  // The record of one conversation (recent list first, then the set).
  virtual std::optional<ConversationInfo_Stru> FindConversation(const WString& convId) const = 0;
  // Never waits for the network: a picture still to be fetched is the
  // default picture now, and 3192 with the id follows when it has arrived.
  virtual Picture ConversationPicture(uint32_t convType, const WString& convId) = 0;
  virtual WString ConversationName(uint32_t convType, const WString& convId) = 0;

  virtual bool IsUnread(const WString& convId) const = 0;
  virtual void SetRead(const WString& convId) = 0;
  // A group's unread messages: fetch them (`count` of them) and report the
  // group read.
  virtual void ReadGroup(const WString& groupId, uint64_t count) = 0;
  // The conversation's record leaves its place and goes to the front, with
  // its data carried over, as `opened`.
  virtual void MoveToFront(const WString& convId, uint32_t convType, uint64_t now) = 0;
  virtual void DeleteConversation(const WString& convId) = 0;
  // Asks the SDK for the conversation list again.
  virtual void RefreshConversations() = 0;
  virtual bool IsNetworkDown() const = 0;
  // The host's shared chat on a drawing: its conversation id, if one runs.
  virtual std::optional<WString> SharedSessionConversation() const = 0;
};

// The source over the module's service object. Fetched pictures are
// announced to `window` (3192).
std::unique_ptr<ConversationListSource> MakeConversationListSource(CChatTools& tools);

}  // namespace service

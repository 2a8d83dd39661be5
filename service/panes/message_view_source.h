#pragma once
// What the message view reads from the service layer and asks of it (and of
// the host, for drawings): nothing more, so the view can be driven by a fake
// in tests.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/user_prompt.h"
#include "platform/strings.h"
#include "records/message_records.h"
#include "service/drawings/drawing_opening.h"
#include "service/service_records.h"

class CChatTools;

namespace service {

class MessageViewSource {
 public:
  virtual ~MessageViewSource() = default;

  virtual WString CurrentConversation() const = 0;
  virtual uint32_t CurrentConversationType() const = 0;
  // The signed-in user's id, and nickname (own messages' headers).
  virtual WString SelfId() const = 0;
  virtual WString SelfName() const = 0;
  // A friend's remark, else nickname; none when `id` is no friend.
  virtual std::optional<WString> FriendName(const WString& id) const = 0;

  // Received (or locally added) messages not shown yet, oldest first.
  virtual std::vector<MessageStru> TakeNewMessages(const WString& convId) = 0;
  // The newest `limit` stored messages of the conversation, newest first.
  virtual std::vector<MessageStru> StoredMessages(const WString& convId, int limit) = 0;
  virtual void ReportRead(const WString& convId, uint32_t convType) = 0;

  // The file behind an element's download parameter, into `path`; the end
  // is announced as 3164 with `requestKey`.
  virtual void Download(const std::string& downloadParam, const WString& path,
                        uint64_t requestKey) = 0;
  virtual std::optional<DownloadState> Transfer(uint64_t requestKey) const = 0;
  virtual WString DownloadFolder() const = 0;
  // A message the user sent, by local id: its send state and unique id.
  virtual std::optional<MessageStru> SentMessage(uint32_t localId) const = 0;
  // How far a message being sent has been uploaded (3164 with its local id).
  virtual std::optional<UploadProgress> Upload(uint32_t localId) const = 0;

  // Opens a drawing message's drawing through the host: checked in the
  // group's space, a received one fetched into the download folder once
  // (`message` and its stored row then name the copy); the user is told
  // through `prompt` what went wrong.
  virtual drawings::DrawingOpenStep OpenDrawing(MessageStru& message, host::UserPrompt& prompt) = 0;
};

std::unique_ptr<MessageViewSource> MakeMessageViewSource(CChatTools& tools);

}  // namespace service

#pragma once
// The messages the view shows, per conversation, with what the view keeps
// beside each: visibility, read-marking, the item id written into its item,
// and per element the inserted object and the transfer in progress.

#include <cstdint>
#include <ctime>
#include <map>
#include <vector>

#include "platform/strings.h"
#include "records/message_records.h"
#include "ui/main/message_view_rules.h"

namespace ui::main {

struct ShownElem {
  int objectId = 0;       // 0 until the element's object is in the item
  bool rendered = false;  // text: written once
  bool own = false;       // the element of a message the user sent
  TransferState transfer = TransferState::kNone;
  std::time_t transferStarted = 0;
  uint64_t currentSize = 0;
  uint64_t totalSize = 0;
  WString localPath;  // the downloaded (or sent) file
};

struct ShownMessage {
  MessageStru message;
  std::vector<ShownElem> elems;  // one per message element
  uint64_t itemId = 0;
  bool visible = true;
  bool readMarked = false;
};

class MessageMap {
 public:
  // Item ids of messages without a local id start here, beyond every local id
  // the service can hand out (32-bit), so 3164's local id is also the item
  // id and the two never meet.
  static constexpr uint64_t kFirstStoredItemId = uint64_t{1} << 32;

  // Adds the messages not held yet, in time order; returns how many were new.
  size_t Merge(const WString& convId, const std::vector<MessageStru>& messages);
  std::vector<ShownMessage>* Find(const WString& convId);
  size_t Count(const WString& convId) const;
  ShownMessage* FindItem(uint64_t itemId, WString* convId = nullptr);
  void Forget(const WString& convId);
  // Forgets every conversation (sign-out). Item ids go on counting: a late
  // 3164 of the ended session names no item of the next one.
  void Clear() { conversations_.clear(); }

 private:
  uint64_t ItemIdFor(const MessageStru& message);

  std::map<WString, std::vector<ShownMessage>> conversations_;
  uint64_t nextItemId_ = kFirstStoredItemId;
};

}  // namespace ui::main

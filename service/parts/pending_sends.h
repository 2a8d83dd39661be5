#pragma once
// The sends in flight: the pending-send map by local id, the local id
// counter shared with the module's notices, the drawing placeholders not yet
// sent, and the heap id copies the SDK carries as user data. One lock, held
// only inside these calls.
//
// A result may arrive while TIMMsgSendNewMsg is still running (an SDK that
// answers on the calling thread) or any time after. While the send is in its
// call the result is parked, and the sender handles it once the call
// returned; so the message is always listed before its result acts, and no
// lock is held across the SDK call.

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "records/message_records.h"
#include "service/service_records.h"

namespace service {

struct SendResult {
  int32_t code = 0;
  std::string json;
};

class PendingSends {
 public:
  // Settled sends kept findable for the window (it reads them on 3164).
  static constexpr size_t kSettledKept = 256;

  // Forgets the sends and frees the id copies whose results never came.
  void Clear();

  uint32_t NextLocalId();
  std::optional<MessageStru> Find(uint32_t localId) const;

  // A send about to be made, now in its call. `pending.local_id` naming a
  // placeholder not yet sent takes it over (then true); otherwise the
  // message gets a new id.
  bool Register(MessageStru& pending);
  void RegisterPlaceholder(MessageStru& placeholder);
  // The SDK refused the call: a fresh entry goes, a taken-over placeholder
  // fails (true: the view shows it and must learn of it).
  bool Abandon(uint32_t localId, bool wasPlaceholder);
  // The upload behind a placeholder failed: it becomes a failed send and can
  // no longer be taken over. False when it is not a placeholder still waiting.
  bool FailPlaceholder(uint32_t localId);
  // The call returned: a result that arrived during it, if any.
  std::optional<SendResult> LeaveCall(uint32_t localId);
  // A result arrived: parked (false) while its send is in the call.
  bool ArriveOrPark(uint32_t localId, const SendResult& result);
  // Settles a sending entry (status 2 or 3); none when it is not sending.
  std::optional<MessageStru> Settle(uint32_t localId, int32_t code);
  void SetUniqueId(uint32_t localId, uint64_t uniqueId);

  // The SDK reports how far an element of a message being sent has been
  // uploaded; the report is the SDK's copy of the message, without our local
  // id. It names the send that is still sending in the same conversation and
  // has the same file at `index`. Returns that send's local id.
  std::optional<uint32_t> RecordUpload(const MessageStru& reported, uint32_t index,
                                       UploadProgress progress);
  // Until the send settles.
  std::optional<UploadProgress> Upload(uint32_t localId) const;

  // The heap copy of a local id handed to the SDK as user data. Redeem gives
  // the id back and frees the copy; an address this part did not issue (or
  // already redeemed) gives none and is not read.
  void* IssueResultKey(uint32_t localId);
  std::optional<uint32_t> RedeemResultKey(void* key);

 private:
  uint32_t NextLocalIdLocked();
  void RememberSettledLocked(uint32_t localId);

  mutable std::mutex mutex_;
  std::map<uint32_t, MessageStru> sends_;
  uint32_t last_local_id_ = 0;
  std::set<uint32_t> placeholders_;
  std::list<uint32_t> settled_;  // oldest first
  std::set<uint32_t> in_call_;
  std::map<uint32_t, SendResult> parked_;
  std::map<void*, std::unique_ptr<uint32_t>> keys_;
  std::map<uint32_t, UploadProgress> uploads_;
};

}  // namespace service

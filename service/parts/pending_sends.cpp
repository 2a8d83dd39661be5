#include "service/parts/pending_sends.h"

#include "service/local_ids.h"

namespace service {
namespace {

// The local file an element is uploaded from; empty when it has none.
const WString& UploadedFile(const MessageStru& message, uint32_t index) {
  static const WString none;
  if (index >= message.elems.size()) return none;
  const ElemStru& elem = message.elems[index];
  return elem.elem_type == kElemImage  ? elem.orig_path
         : elem.elem_type == kElemFile ? elem.file_path
                                       : none;
}

void SetSendStatus(MessageStru& message, uint32_t status) {
  message.status = status;
  if (!message.elems.empty()) message.elems.front().send_status = status;
}

}  // namespace

void PendingSends::Clear() {
  // The session is over: TIMLogout has delivered or dropped every result.
  std::lock_guard lock(mutex_);
  sends_.clear();
  placeholders_.clear();
  settled_.clear();
  in_call_.clear();
  parked_.clear();
  keys_.clear();
  uploads_.clear();
}

uint32_t PendingSends::NextLocalId() {
  std::lock_guard lock(mutex_);
  return NextLocalIdLocked();
}

uint32_t PendingSends::NextLocalIdLocked() {
  last_local_id_ = LocalIdAfter(last_local_id_);
  return last_local_id_;
}

std::optional<MessageStru> PendingSends::Find(uint32_t localId) const {
  std::lock_guard lock(mutex_);
  auto it = sends_.find(localId);
  if (it == sends_.end()) return std::nullopt;
  return it->second;
}

bool PendingSends::Register(MessageStru& pending) {
  std::lock_guard lock(mutex_);
  // A placeholder forgotten by a sign-out (the map was emptied) is not taken over.
  const bool tookOver =
      placeholders_.erase(pending.local_id) != 0 && sends_.count(pending.local_id) != 0;
  if (!tookOver) pending.local_id = NextLocalIdLocked();
  SetSendStatus(pending, kSending);
  sends_[pending.local_id] = pending;
  in_call_.insert(pending.local_id);
  return tookOver;
}

void PendingSends::RegisterPlaceholder(MessageStru& placeholder) {
  std::lock_guard lock(mutex_);
  placeholder.local_id = NextLocalIdLocked();
  SetSendStatus(placeholder, kSending);
  sends_[placeholder.local_id] = placeholder;
  placeholders_.insert(placeholder.local_id);
}

bool PendingSends::Abandon(uint32_t localId, bool wasPlaceholder) {
  std::lock_guard lock(mutex_);
  in_call_.erase(localId);
  parked_.erase(localId);
  auto it = sends_.find(localId);
  if (it == sends_.end()) return false;
  if (!wasPlaceholder) {
    sends_.erase(it);
    return false;
  }
  // The view already shows the placeholder: it becomes a failed send.
  SetSendStatus(it->second, kSendFailed);
  RememberSettledLocked(localId);
  return true;
}

bool PendingSends::FailPlaceholder(uint32_t localId) {
  std::lock_guard lock(mutex_);
  auto it = sends_.find(localId);
  if (placeholders_.erase(localId) == 0 || it == sends_.end()) return false;
  SetSendStatus(it->second, kSendFailed);
  RememberSettledLocked(localId);
  return true;
}

std::optional<SendResult> PendingSends::LeaveCall(uint32_t localId) {
  std::lock_guard lock(mutex_);
  in_call_.erase(localId);
  auto it = parked_.find(localId);
  if (it == parked_.end()) return std::nullopt;
  SendResult result = std::move(it->second);
  parked_.erase(it);
  return result;
}

bool PendingSends::ArriveOrPark(uint32_t localId, const SendResult& result) {
  std::lock_guard lock(mutex_);
  if (in_call_.count(localId) == 0) return true;
  parked_[localId] = result;
  return false;
}

std::optional<MessageStru> PendingSends::Settle(uint32_t localId, int32_t code) {
  std::lock_guard lock(mutex_);
  auto it = sends_.find(localId);
  // Settled sends and placeholders that were never sent are not pending.
  if (it == sends_.end() || it->second.status != kSending || placeholders_.count(localId) != 0) {
    return std::nullopt;
  }
  SetSendStatus(it->second, code == 0 ? kSent : kSendFailed);
  RememberSettledLocked(localId);
  uploads_.erase(localId);
  return it->second;
}

void PendingSends::RememberSettledLocked(uint32_t localId) {
  settled_.push_back(localId);
  while (settled_.size() > kSettledKept) {
    sends_.erase(settled_.front());
    settled_.pop_front();
  }
}

void PendingSends::SetUniqueId(uint32_t localId, uint64_t uniqueId) {
  std::lock_guard lock(mutex_);
  auto it = sends_.find(localId);
  if (it != sends_.end()) it->second.unique_id = uniqueId;
}

std::optional<uint32_t> PendingSends::RecordUpload(const MessageStru& reported, uint32_t index,
                                                   UploadProgress progress) {
  const WString& file = UploadedFile(reported, index);
  if (file.empty()) return std::nullopt;
  std::lock_guard lock(mutex_);
  for (const auto& [localId, send] : sends_) {
    // The conversation when the report names one.
    if (send.status != kSending || UploadedFile(send, index) != file ||
        (!reported.conv_id.empty() && send.conv_id != reported.conv_id)) {
      continue;
    }
    uploads_[localId] = progress;
    return localId;
  }
  return std::nullopt;
}

std::optional<UploadProgress> PendingSends::Upload(uint32_t localId) const {
  std::lock_guard lock(mutex_);
  auto it = uploads_.find(localId);
  if (it == uploads_.end()) return std::nullopt;
  return it->second;
}

void* PendingSends::IssueResultKey(uint32_t localId) {
  auto copy = std::make_unique<uint32_t>(localId);
  void* key = copy.get();
  std::lock_guard lock(mutex_);
  keys_.emplace(key, std::move(copy));
  return key;
}

std::optional<uint32_t> PendingSends::RedeemResultKey(void* key) {
  std::lock_guard lock(mutex_);
  auto it = keys_.find(key);
  if (it == keys_.end()) return std::nullopt;
  uint32_t localId = *it->second;
  keys_.erase(it);
  return localId;
}

}  // namespace service

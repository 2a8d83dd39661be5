// The pending-send map and the local id counter. The window thread registers
// sends, the SDK's thread settles them, any thread reads: everything here is
// under send_mutex_.
#include "service/pending_sends.h"

#include "platform/trace.h"
#include "service/chat_tools.h"

uint32_t CChatTools::NextLocalId() {
  std::lock_guard lock(send_mutex_);
  return NextLocalIdLocked();
}

uint32_t CChatTools::NextLocalIdLocked() {
  last_local_id_ = service::LocalIdAfter(last_local_id_);
  return last_local_id_;
}

std::optional<MessageStru> CChatTools::FindPendingSend(uint32_t localId) const {
  std::lock_guard lock(send_mutex_);
  auto it = pending_sends_.find(localId);
  if (it == pending_sends_.end()) return std::nullopt;
  return it->second;
}

namespace {

void SetSendStatus(MessageStru& message, uint32_t status) {
  message.status = status;
  if (!message.elems.empty()) message.elems.front().send_status = status;
}

}  // namespace

uint32_t CChatTools::RegisterPendingSend(MessageStru& pending, bool* tookOverPlaceholder) {
  std::lock_guard lock(send_mutex_);
  // A placeholder forgotten by a sign-out (the map was emptied) is not taken over.
  *tookOverPlaceholder =
      placeholder_ids_.erase(pending.local_id) != 0 && pending_sends_.count(pending.local_id) != 0;
  if (!*tookOverPlaceholder) pending.local_id = NextLocalIdLocked();
  SetSendStatus(pending, kSending);
  pending_sends_[pending.local_id] = pending;
  return pending.local_id;
}

void CChatTools::RegisterPlaceholder(MessageStru& placeholder) {
  std::lock_guard lock(send_mutex_);
  placeholder.local_id = NextLocalIdLocked();
  SetSendStatus(placeholder, kSending);
  pending_sends_[placeholder.local_id] = placeholder;
  placeholder_ids_.insert(placeholder.local_id);
}

bool CChatTools::AbandonPendingSend(uint32_t localId, bool wasPlaceholder) {
  std::lock_guard lock(send_mutex_);
  auto it = pending_sends_.find(localId);
  if (it == pending_sends_.end()) return false;
  if (!wasPlaceholder) {
    pending_sends_.erase(it);
    return false;
  }
  // The view already shows the placeholder: it becomes a failed send.
  SetSendStatus(it->second, kSendFailed);
  RememberSettledLocked(localId);
  return true;
}

std::optional<MessageStru> CChatTools::SettlePendingSend(uint32_t localId, int32_t code) {
  std::lock_guard lock(send_mutex_);
  auto it = pending_sends_.find(localId);
  // Settled sends and placeholders that were never sent are not pending.
  if (it == pending_sends_.end() || it->second.status != kSending ||
      placeholder_ids_.count(localId) != 0) {
    return std::nullopt;
  }
  SetSendStatus(it->second, code == 0 ? kSent : kSendFailed);
  RememberSettledLocked(localId);
  return it->second;
}

void CChatTools::RememberSettledLocked(uint32_t localId) {
  settled_ids_.push_back(localId);
  while (settled_ids_.size() > kSettledSendsKept) {
    pending_sends_.erase(settled_ids_.front());
    settled_ids_.pop_front();
  }
}

void CChatTools::SetSentUniqueId(uint32_t localId, uint64_t uniqueId) {
  std::lock_guard lock(send_mutex_);
  auto it = pending_sends_.find(localId);
  if (it != pending_sends_.end()) it->second.unique_id = uniqueId;
}

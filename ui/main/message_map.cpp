#include "ui/main/message_map.h"

#include <algorithm>

namespace ui::main {
namespace {

// The same message arriving twice (the store and the new-message cache both
// hold received messages; a sent one comes back from the store).
bool SameMessage(const MessageStru& a, const MessageStru& b) {
  if (a.unique_id != 0 && a.unique_id == b.unique_id) return true;
  return a.local_id != 0 && a.local_id == b.local_id;
}

}  // namespace

uint64_t MessageMap::ItemIdFor(const MessageStru& message) {
  if (message.local_id != 0) return message.local_id;
  return nextItemId_++;
}

size_t MessageMap::Merge(const WString& convId, const std::vector<MessageStru>& messages) {
  std::vector<ShownMessage>& list = conversations_[convId];
  size_t added = 0;
  for (const MessageStru& message : messages) {
    auto same = std::find_if(list.begin(), list.end(), [&](const ShownMessage& shown) {
      return SameMessage(shown.message, message);
    });
    if (same != list.end()) {
      // A sent message learns its unique id when it comes back.
      if (same->message.unique_id == 0) same->message.unique_id = message.unique_id;
      continue;
    }
    ShownMessage shown;
    shown.message = message;
    shown.elems.resize(message.elems.size());
    shown.itemId = ItemIdFor(message);
    auto at = std::upper_bound(
        list.begin(), list.end(), message.server_time,
        [](uint64_t time, const ShownMessage& m) { return time < m.message.server_time; });
    list.insert(at, std::move(shown));
    ++added;
  }
  return added;
}

std::vector<ShownMessage>* MessageMap::Find(const WString& convId) {
  auto it = conversations_.find(convId);
  return it == conversations_.end() ? nullptr : &it->second;
}

size_t MessageMap::Count(const WString& convId) const {
  auto it = conversations_.find(convId);
  return it == conversations_.end() ? 0 : it->second.size();
}

ShownMessage* MessageMap::FindItem(uint64_t itemId, WString* convId) {
  for (auto& [id, list] : conversations_) {
    for (ShownMessage& shown : list) {
      if (shown.itemId != itemId) continue;
      if (convId) *convId = id;
      return &shown;
    }
  }
  return nullptr;
}

void MessageMap::Forget(const WString& convId) {
  conversations_.erase(convId);
}

}  // namespace ui::main

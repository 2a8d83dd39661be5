#pragma once
// A conversation list source held in memory, recording what the pane asks.

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "service/panes/conversation_list_source.h"

namespace ui::test {

class FakeConversationSource : public service::ConversationListSource {
 public:
  struct Entry {
    ConversationInfo_Stru info;
    WString name;
    WString picture = u"..\\img\\PersonDefaultImg.png";
  };
  std::vector<Entry> conversations;
  std::set<WString> unread;
  bool signedIn = true;
  bool networkDown = false;
  std::optional<WString> sharedSession;
  std::vector<std::string> calls;  // what the pane asked, in order

  void AddConversation(const WString& id, uint32_t type, const WString& name,
                       uint64_t unreadNum = 0) {
    Entry entry;
    entry.info.conv_id = id;
    entry.info.conv_type = type;
    entry.info.unread_num = unreadNum;
    entry.name = name;
    conversations.push_back(entry);
  }
  std::vector<WString> Order() const {
    std::vector<WString> ids;
    for (const Entry& e : conversations) ids.push_back(e.info.conv_id);
    return ids;
  }

  bool IsSignedIn() const override { return signedIn; }
  bool HasConversations() const override { return !conversations.empty(); }
  std::vector<RecentConversationKey> RecentKeys() const override {
    std::vector<RecentConversationKey> keys;
    for (const Entry& e : conversations) keys.push_back({e.info.conv_id, e.info.conv_type});
    return keys;
  }
  std::optional<ConversationInfo_Stru> FindConversation(const WString& id) const override {
    const Entry* e = Find(id);
    return e ? std::optional(e->info) : std::nullopt;
  }
  Picture ConversationPicture(uint32_t, const WString& id) override {
    const Entry* e = Find(id);
    return e ? Picture{e->picture, e->name} : Picture{};
  }
  WString ConversationName(uint32_t, const WString& id) override {
    const Entry* e = Find(id);
    return e ? e->name : WString();
  }
  bool IsUnread(const WString& id) const override { return unread.count(id) != 0; }
  void SetRead(const WString& id) override { unread.erase(id); }
  void ReadGroup(const WString& id, uint64_t count) override {
    calls.push_back("ReadGroup " + platform::Utf16ToUtf8(id) + " " + std::to_string(count));
  }
  void MoveToFront(const WString& id, uint32_t type, uint64_t now) override {
    Entry entry;
    auto it = std::find_if(conversations.begin(), conversations.end(),
                           [&](const Entry& e) { return e.info.conv_id == id; });
    if (it != conversations.end()) {
      entry = *it;
      conversations.erase(it);
    }
    entry.info.conv_id = id;
    entry.info.conv_type = type;
    entry.info.active_time = now;
    conversations.insert(conversations.begin(), entry);
  }
  void DeleteConversation(const WString& id) override {
    calls.push_back("Delete " + platform::Utf16ToUtf8(id));
    std::erase_if(conversations, [&](const Entry& e) { return e.info.conv_id == id; });
  }
  void RefreshConversations() override { calls.push_back("Refresh"); }
  bool IsNetworkDown() const override { return networkDown; }
  std::optional<WString> SharedSessionConversation() const override { return sharedSession; }

 private:
  const Entry* Find(const WString& id) const {
    for (const Entry& e : conversations) {
      if (e.info.conv_id == id) return &e;
    }
    return nullptr;
  }
};

}  // namespace ui::test

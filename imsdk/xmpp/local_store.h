#pragma once
// What no XMPP server keeps for a client, kept per account in a SQLite file:
// the conversation list with unread counts, the messages seen (to drop
// duplicates and to find a message's place in the server's archive), the
// incoming friend requests (servers only re-deliver them) and a few settings.
// Used on the backend's worker thread only.
#include <json/json.h>
#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace imsdk::xmpp {

struct StoredConversation {
  int type = 1;
  std::string id;
  uint64_t unread = 0;
  uint64_t active_time = 0;
  std::string last_message;  // message JSON, "" when none
};

struct StoredRequest {
  std::string peer;
  uint64_t add_time = 0;
  std::string wording;
  std::string source;
  uint64_t seq = 0;
};

class LocalStore {
 public:
  LocalStore() = default;
  ~LocalStore();
  LocalStore(const LocalStore&) = delete;
  LocalStore& operator=(const LocalStore&) = delete;

  // Opens (creating) the file; returns the error text or "".
  std::string Open(const std::string& path);
  void Close();
  bool is_open() const { return db_ != nullptr; }

  void Begin();
  void Commit();

  // Records a message; false when its id was seen before (a duplicate).
  // Counts it unread when it is not from self and not `read`.
  bool AddMessage(int conv_type, const std::string& conv_id, uint64_t unique_id,
                  const std::string& archive_id, uint64_t server_time, bool from_self,
                  const std::string& json);
  bool HasMessage(uint64_t unique_id);
  // Learns the archive id of a message seen live (a history page tells it).
  void SetArchiveId(uint64_t unique_id, const std::string& archive_id);
  std::string ArchiveId(uint64_t unique_id);
  // The server time of a known message (0 when unknown).
  uint64_t MessageTime(uint64_t unique_id);
  // The newest server time of the messages kept in conversations of
  // `conv_type` (only `conv_id`'s unless empty); 0 when none.
  uint64_t NewestMessageTime(int conv_type, const std::string& conv_id);

  std::vector<StoredConversation> Conversations();
  std::optional<StoredConversation> Conversation(int type, const std::string& id);
  // Creates it when missing.
  StoredConversation TouchConversation(int type, const std::string& id, uint64_t now);
  void DeleteConversation(int type, const std::string& id);
  // Read up to the message `unique_id` (0: everything).
  void MarkRead(int type, const std::string& id, uint64_t unique_id);

  // Incoming friend requests; `seq` grows with every new one.
  void AddRequest(const std::string& peer, uint64_t add_time, const std::string& wording,
                  const std::string& source);
  bool RemoveRequest(const std::string& peer);
  std::vector<StoredRequest> Requests();  // newest first

  std::string Setting(const std::string& key, const std::string& fallback = "");
  void SetSetting(const std::string& key, const std::string& value);

 private:
  bool Exec(const char* sql);
  sqlite3* db_ = nullptr;
};

}  // namespace imsdk::xmpp

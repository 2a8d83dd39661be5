#include "imsdk/xmpp/local_store.h"

#include <filesystem>

#include "platform/trace.h"

namespace imsdk::xmpp {
namespace {

constexpr const char* kSchema = R"sql(
CREATE TABLE IF NOT EXISTS messages(
  unique_id INTEGER PRIMARY KEY, conv_type INTEGER NOT NULL, conv_id TEXT NOT NULL,
  archive_id TEXT NOT NULL DEFAULT '', server_time INTEGER NOT NULL,
  from_self INTEGER NOT NULL, seq INTEGER NOT NULL, json TEXT NOT NULL);
CREATE INDEX IF NOT EXISTS messages_by_conv ON messages(conv_type, conv_id, seq);
CREATE INDEX IF NOT EXISTS messages_by_seq ON messages(seq);
CREATE TABLE IF NOT EXISTS conversations(
  conv_type INTEGER NOT NULL, conv_id TEXT NOT NULL, unread INTEGER NOT NULL DEFAULT 0,
  active_time INTEGER NOT NULL DEFAULT 0, last_seq INTEGER NOT NULL DEFAULT 0,
  read_seq INTEGER NOT NULL DEFAULT 0, PRIMARY KEY(conv_type, conv_id));
CREATE TABLE IF NOT EXISTS requests(
  peer TEXT PRIMARY KEY, add_time INTEGER NOT NULL, wording TEXT NOT NULL,
  source TEXT NOT NULL, seq INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS settings(key TEXT PRIMARY KEY, value TEXT NOT NULL);
)sql";

// One prepared statement, finalised when it goes out of scope.
class Statement {
 public:
  Statement(sqlite3* db, const char* sql) {
    if (db != nullptr && sqlite3_prepare_v2(db, sql, -1, &stmt_, nullptr) != SQLITE_OK) {
      platform::Trace("xmpp store: %s", sqlite3_errmsg(db));
      stmt_ = nullptr;
    }
  }
  ~Statement() { sqlite3_finalize(stmt_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  template <typename... A>
  Statement& Bind(const A&... args) {
    int index = 0;
    (BindOne(++index, args), ...);
    return *this;
  }
  bool Step() { return stmt_ != nullptr && sqlite3_step(stmt_) == SQLITE_ROW; }
  int64_t Int(int col) { return sqlite3_column_int64(stmt_, col); }
  std::string Text(int col) {
    const unsigned char* t = sqlite3_column_text(stmt_, col);
    return t == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(t));
  }

 private:
  void BindOne(int i, const std::string& v) {
    sqlite3_bind_text(stmt_, i, v.data(), static_cast<int>(v.size()), SQLITE_TRANSIENT);
  }
  void BindOne(int i, const char* v) { sqlite3_bind_text(stmt_, i, v, -1, SQLITE_TRANSIENT); }
  template <typename N>
  void BindOne(int i, N v) {
    sqlite3_bind_int64(stmt_, i, static_cast<sqlite3_int64>(v));
  }
  sqlite3_stmt* stmt_ = nullptr;
};

}  // namespace

LocalStore::~LocalStore() {
  Close();
}

std::string LocalStore::Open(const std::string& path) {
  Close();
  std::error_code ec;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ec);
  if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) {
    std::string error = "cannot open " + path + ": " + sqlite3_errmsg(db_);
    Close();
    return error;
  }
  sqlite3_busy_timeout(db_, 2000);
  Exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;");
  if (!Exec(kSchema)) {
    std::string error = "cannot prepare " + path + ": " + sqlite3_errmsg(db_);
    Close();
    return error;
  }
  return "";
}

void LocalStore::Close() {
  if (db_ != nullptr) sqlite3_close(db_);
  db_ = nullptr;
}

bool LocalStore::Exec(const char* sql) {
  if (db_ == nullptr) return false;
  char* error = nullptr;
  if (sqlite3_exec(db_, sql, nullptr, nullptr, &error) != SQLITE_OK) {
    platform::Trace("xmpp store: %s", error == nullptr ? "?" : error);
    sqlite3_free(error);
    return false;
  }
  return true;
}

void LocalStore::Begin() {
  Exec("BEGIN");
}

void LocalStore::Commit() {
  Exec("COMMIT");
}

bool LocalStore::AddMessage(int conv_type, const std::string& conv_id, uint64_t unique_id,
                            const std::string& archive_id, uint64_t server_time, bool from_self,
                            const std::string& json) {
  if (db_ == nullptr) return true;
  if (HasMessage(unique_id)) {
    if (!archive_id.empty()) SetArchiveId(unique_id, archive_id);
    return false;
  }
  TouchConversation(conv_type, conv_id, server_time);
  Statement(db_,
            "INSERT INTO messages(unique_id, conv_type, conv_id, archive_id, server_time, "
            "from_self, seq, json) VALUES(?,?,?,?,?,?,"
            "(SELECT IFNULL(MAX(seq),0)+1 FROM messages),?)")
      .Bind(static_cast<int64_t>(unique_id), conv_type, conv_id, archive_id, server_time,
            from_self ? 1 : 0, json)
      .Step();
  Statement(db_,
            "UPDATE conversations SET last_seq=(SELECT seq FROM messages WHERE unique_id=?), "
            "active_time=MAX(active_time, ?), unread=unread+? WHERE conv_type=? AND conv_id=?")
      .Bind(static_cast<int64_t>(unique_id), server_time, from_self ? 0 : 1, conv_type, conv_id)
      .Step();
  return true;
}

bool LocalStore::HasMessage(uint64_t unique_id) {
  Statement s(db_, "SELECT 1 FROM messages WHERE unique_id=?");
  return s.Bind(static_cast<int64_t>(unique_id)).Step();
}

void LocalStore::SetArchiveId(uint64_t unique_id, const std::string& archive_id) {
  Statement(db_, "UPDATE messages SET archive_id=? WHERE unique_id=? AND archive_id=''")
      .Bind(archive_id, static_cast<int64_t>(unique_id))
      .Step();
}

std::string LocalStore::ArchiveId(uint64_t unique_id) {
  Statement s(db_, "SELECT archive_id FROM messages WHERE unique_id=?");
  return s.Bind(static_cast<int64_t>(unique_id)).Step() ? s.Text(0) : "";
}

uint64_t LocalStore::MessageTime(uint64_t unique_id) {
  Statement s(db_, "SELECT server_time FROM messages WHERE unique_id=?");
  return s.Bind(static_cast<int64_t>(unique_id)).Step() ? static_cast<uint64_t>(s.Int(0)) : 0;
}

uint64_t LocalStore::NewestMessageTime(int conv_type, const std::string& conv_id) {
  Statement s(db_,
              "SELECT IFNULL(max(server_time), 0) FROM messages WHERE conv_type=? AND "
              "(?='' OR conv_id=?)");
  return s.Bind(conv_type, conv_id, conv_id).Step() ? static_cast<uint64_t>(s.Int(0)) : 0;
}

namespace {
constexpr const char* kConversationColumns =
    "SELECT c.conv_type, c.conv_id, c.unread, c.active_time, IFNULL(m.json, '') "
    "FROM conversations c LEFT JOIN messages m ON m.seq = c.last_seq AND c.last_seq > 0 ";

StoredConversation ReadConversation(Statement& s) {
  return StoredConversation{static_cast<int>(s.Int(0)), s.Text(1), static_cast<uint64_t>(s.Int(2)),
                            static_cast<uint64_t>(s.Int(3)), s.Text(4)};
}
}  // namespace

std::vector<StoredConversation> LocalStore::Conversations() {
  std::vector<StoredConversation> out;
  Statement s(
      db_,
      (std::string(kConversationColumns) + "ORDER BY c.active_time DESC, c.last_seq DESC").c_str());
  while (s.Step()) out.push_back(ReadConversation(s));
  return out;
}

std::optional<StoredConversation> LocalStore::Conversation(int type, const std::string& id) {
  Statement s(db_,
              (std::string(kConversationColumns) + "WHERE c.conv_type=? AND c.conv_id=?").c_str());
  if (!s.Bind(type, id).Step()) return std::nullopt;
  return ReadConversation(s);
}

StoredConversation LocalStore::TouchConversation(int type, const std::string& id, uint64_t now) {
  Statement(db_,
            "INSERT OR IGNORE INTO conversations(conv_type, conv_id, active_time) VALUES(?,?,?)")
      .Bind(type, id, now)
      .Step();
  return Conversation(type, id).value_or(StoredConversation{type, id, 0, now, ""});
}

void LocalStore::DeleteConversation(int type, const std::string& id) {
  Statement(db_, "DELETE FROM conversations WHERE conv_type=? AND conv_id=?").Bind(type, id).Step();
  Statement(db_, "DELETE FROM messages WHERE conv_type=? AND conv_id=?").Bind(type, id).Step();
}

void LocalStore::MarkRead(int type, const std::string& id, uint64_t unique_id) {
  // Read up to a message: what came after it stays unread.
  Statement(db_,
            "UPDATE conversations SET read_seq = IFNULL((SELECT seq FROM messages WHERE "
            "unique_id=? AND conv_type=?2 AND conv_id=?3), last_seq) WHERE conv_type=?2 AND "
            "conv_id=?3")
      .Bind(static_cast<int64_t>(unique_id), type, id)
      .Step();
  Statement(db_,
            "UPDATE conversations SET unread=(SELECT COUNT(*) FROM messages m WHERE "
            "m.conv_type=?1 AND m.conv_id=?2 AND m.from_self=0 AND m.seq > read_seq) "
            "WHERE conv_type=?1 AND conv_id=?2")
      .Bind(type, id)
      .Step();
}

void LocalStore::AddRequest(const std::string& peer, uint64_t add_time, const std::string& wording,
                            const std::string& source) {
  Statement(db_,
            "INSERT INTO requests(peer, add_time, wording, source, seq) VALUES(?,?,?,?,"
            "(SELECT IFNULL(MAX(seq),0)+1 FROM requests)) ON CONFLICT(peer) DO UPDATE SET "
            "wording=excluded.wording")
      .Bind(peer, add_time, wording, source)
      .Step();
}

bool LocalStore::RemoveRequest(const std::string& peer) {
  Statement(db_, "DELETE FROM requests WHERE peer=?").Bind(peer).Step();
  return db_ != nullptr && sqlite3_changes(db_) > 0;
}

std::vector<StoredRequest> LocalStore::Requests() {
  std::vector<StoredRequest> out;
  Statement s(db_, "SELECT peer, add_time, wording, source, seq FROM requests ORDER BY seq DESC");
  while (s.Step()) {
    out.push_back(StoredRequest{s.Text(0), static_cast<uint64_t>(s.Int(1)), s.Text(2), s.Text(3),
                                static_cast<uint64_t>(s.Int(4))});
  }
  return out;
}

std::string LocalStore::Setting(const std::string& key, const std::string& fallback) {
  Statement s(db_, "SELECT value FROM settings WHERE key=?");
  return s.Bind(key).Step() ? s.Text(0) : fallback;
}

void LocalStore::SetSetting(const std::string& key, const std::string& value) {
  Statement(db_, "INSERT OR REPLACE INTO settings(key, value) VALUES(?,?)").Bind(key, value).Step();
}

}  // namespace imsdk::xmpp

#include "store/chat_db.h"

#include <sqlite3.h>

#include <cstdlib>

#include "platform/trace.h"
#include "store/hex_text.h"
#include "store/message_row.h"
#include "store/schema.h"
#include "store/sql_id.h"

namespace {

static_assert(CChatDb::kOpenFlags == (SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE |
                                      SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_SHAREDCACHE));

// A file that SQLite cannot read as a database: it is left exactly as it is.
bool IsUnusableFile(int rc) {
  int primary = rc & 0xFF;
  return primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT;
}

// Failures that pass: another connection holds the file, or the disk is full.
bool IsPassing(int rc) {
  int primary = rc & 0xFF;
  return primary == SQLITE_BUSY || primary == SQLITE_LOCKED || primary == SQLITE_FULL;
}

}  // namespace

CChatDb::~CChatDb() {
  Close();
}

CChatDb& CChatDb::Instance() {
  static CChatDb* instance = new CChatDb;
  return *instance;
}

std::string CChatDb::GetPath() const {
  std::lock_guard lock(mutex_);
  return path_;
}

bool CChatDb::IsOpen() const {
  std::lock_guard lock(mutex_);
  return db_ != nullptr;
}

bool CChatDb::Open(const std::string& path) {
  std::lock_guard lock(mutex_);
  CloseLocked();
  path_ = path;
  sqlite3* db = nullptr;
  int rc = sqlite3_open_v2(path.c_str(), &db, kOpenFlags, nullptr);
  if (rc != SQLITE_OK) {
    platform::Trace("打开数据库连接失败!!!!!!");
    platform::Trace("CChatDb: cannot open %s: %s", path.c_str(),
                    db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
    // SQLite hands out a handle even when opening fails; it holds nothing.
    sqlite3_close_v2(db);
    return false;
  }
  db_ = db;
  sqlite3_busy_timeout(db_, busy_wait_ms_);
  platform::Trace("打开数据库连接成功!!!!!!");
  return true;
}

void CChatDb::SetBusyWait(int milliseconds) {
  std::lock_guard lock(mutex_);
  busy_wait_ms_ = milliseconds;
}

size_t CChatDb::KeptStatementCount() const {
  std::lock_guard lock(mutex_);
  return kept_.size();
}

void CChatDb::Close() {
  std::lock_guard lock(mutex_);
  CloseLocked();
}

void CChatDb::CloseLocked() {
  // Once more; not while the schema is missing, which this close may be for.
  if (db_ != nullptr && !kept_.empty() && !schema_pending_) WriteLocked({}, {});
  if (!kept_.empty()) {
    platform::Trace("CChatDb: %zu statements could not be written to %s and are lost", kept_.size(),
                    path_.c_str());
  }
  kept_.clear();
  kept_bytes_ = 0;
  schema_pending_ = false;
  for (auto& [count, statement] : insert_statements_) sqlite3_finalize(statement);
  insert_statements_.clear();
  if (db_ == nullptr) return;
  sqlite3_close_v2(db_);
  db_ = nullptr;
}

int CChatDb::ExecLocked(const std::string& sql) {
  return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
}

void CChatDb::CreateSchema() {
  std::lock_guard lock(mutex_);
  if (db_ == nullptr) return;
  CreateSchemaLocked();
}

void CChatDb::CreateSchemaLocked() {
  int unusable = SQLITE_OK;
  bool passing = false;
  ExecLocked("begin;");
  for (std::string_view create : store::kCreateTableStatements) {
    // Failures are expected (conversationTbl never parses) and do not stop
    // the sequence.
    int rc = ExecLocked(std::string(create));
    if (IsUnusableFile(rc)) unusable = rc;
    // Held by another connection: every further statement would wait too.
    passing = IsPassing(rc);
    if (passing) break;
  }
  int committed = SQLITE_BUSY;
  if (!passing) {
    ExecLocked(std::string(store::kCreateConversationIndex));
    committed = ExecLocked("commit;");
  }
  if (unusable != SQLITE_OK) {
    // Never repaired or replaced here: what the file holds may still be
    // recovered by other means. The next sign-in tries again.
    platform::Trace("CChatDb: %s is not a usable database (%s), closed until the next login",
                    path_.c_str(), sqlite3_errstr(unusable));
    if (!sqlite3_get_autocommit(db_)) ExecLocked("rollback;");
    CloseLocked();
    return;
  }
  schema_pending_ = passing || committed != SQLITE_OK;
  if (schema_pending_) {
    // A fresh file would stay without tables: tried again before each write.
    platform::Trace("CChatDb: schema not committed: %s", sqlite3_errmsg(db_));
    if (!sqlite3_get_autocommit(db_)) ExecLocked("rollback;");
    return;
  }
  CheckVersionLocked();
}

void CChatDb::CheckVersionLocked() {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, store::kSelectVersion.data(),
                         static_cast<int>(store::kSelectVersion.size()), &statement,
                         nullptr) != SQLITE_OK) {
    platform::Trace("QueryCurrentConvMsg 数据库输入的语句校验错误!!!!!!");
    return;
  }
  std::string version;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    const unsigned char* text = sqlite3_column_text(statement, 0);
    version = text ? reinterpret_cast<const char*>(text) : "";
  }
  if (sqlite3_finalize(statement) != SQLITE_OK) {
    platform::Trace("数据库清理语句句柄失败!!!!!!");
    return;
  }
  if (version.empty()) {
    // Written without quotes: SQLite stores the number 1.0 as the text "1.0".
    ExecLocked(std::string(store::kInsertVersionHead) + std::string(store::kSchemaVersion) + ");");
    return;
  }
  // A file of any other version is used as it is: there is no migration.
  if (std::atoi(version.c_str()) != std::atoi(store::kSchemaVersion.data())) {
    platform::Trace("CChatDb: schema version %s kept as it is", version.c_str());
  }
}

bool CChatDb::CommitLocked() {
  if (ExecLocked("COMMIT TRANSACTION;") == SQLITE_OK) return true;
  platform::Trace("CChatDb: commit failed: %s", sqlite3_errmsg(db_));
  return false;
}

bool CChatDb::StatementDoneLocked(int rc, bool& traced) {
  if (rc == SQLITE_OK || rc == SQLITE_DONE) return true;
  if (IsPassing(rc)) return false;
  // A refused duplicate is how one row per message comes about; anything
  // else (a read-only or damaged file) is worth one line per batch, and the
  // rest of the batch still runs.
  if ((rc & 0xFF) != SQLITE_CONSTRAINT && !traced) {
    platform::Trace("CChatDb: statement failed: %s", sqlite3_errmsg(db_));
    traced = true;
  }
  return true;
}

void CChatDb::WriteLocked(const std::vector<std::string>& statements,
                          const std::vector<store::MessageRow>& rows) {
  if (schema_pending_) CreateSchemaLocked();
  if (db_ == nullptr) return;
  bool traced = false;
  bool done = !schema_pending_ && ExecLocked("BEGIN TRANSACTION;") == SQLITE_OK;
  for (size_t i = 0; done && i < kept_.size(); ++i) {
    done = StatementDoneLocked(ExecLocked(kept_[i]), traced);
  }
  for (size_t i = 0; done && i < statements.size(); ++i) {
    done = StatementDoneLocked(ExecLocked(statements[i]), traced);
  }
  for (size_t i = 0; done && i < rows.size(); ++i) {
    done = StatementDoneLocked(InsertRowLocked(rows[i]), traced);
  }
  if (done && CommitLocked()) {
    if (!kept_.empty()) platform::Trace("CChatDb: %zu kept statements written", kept_.size());
    kept_.clear();
    kept_bytes_ = 0;
    return;
  }
  // A transaction left open would swallow every later statement and keep
  // the file locked; what was committed before stays untouched.
  const std::string reason = sqlite3_errmsg(db_);
  if (!sqlite3_get_autocommit(db_)) ExecLocked("ROLLBACK TRANSACTION;");
  KeepLocked(statements, rows);
  platform::Trace("CChatDb: not written (%s), %zu statements kept for the next write",
                  reason.c_str(), kept_.size());
}

void CChatDb::KeepLocked(const std::vector<std::string>& statements,
                         const std::vector<store::MessageRow>& rows) {
  size_t dropped = 0;
  auto keep = [&](std::string sql) {
    if (kept_bytes_ + sql.size() > kMaxKeptBytes) {
      ++dropped;
      return;
    }
    kept_bytes_ += sql.size();
    kept_.push_back(std::move(sql));
  };
  for (const std::string& sql : statements) keep(sql);
  for (const store::MessageRow& row : rows) keep(store::RenderInsertSql(row));
  if (dropped > 0) {
    platform::Trace("CChatDb: %zu statements over the kept limit are lost", dropped);
  }
}

void CChatDb::ExecuteTransaction(const std::vector<std::string>& statements) {
  std::lock_guard lock(mutex_);
  if (db_ == nullptr || (statements.empty() && kept_.empty())) return;
  WriteLocked(statements, {});
}

bool CChatDb::RunSql(const WString& loginUserId, const WString& convId) {
  auto login = store::SqlIdText(loginUserId, "login user id");
  auto conv = store::SqlIdText(convId, "conversation id");
  if (!login || !conv) return false;
  std::string sql = "delete from MessageTbl where loginUserId='" + *login +
                    "' and kTIMMsgConvId='" + *conv + "';";
  std::lock_guard lock(mutex_);
  if (db_ == nullptr) return false;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr) !=
      SQLITE_OK) {
    platform::Trace("数据库输入的语句校验错误!!!!!!");
    return false;
  }
  bool done = sqlite3_step(statement) == SQLITE_DONE;
  platform::Trace(done ? "数据库执行命令成功!!!!!!" : "RunSql 数据库执行命令失败!!!!!!");
  if (sqlite3_finalize(statement) != SQLITE_OK) platform::Trace("数据库清理语句句柄失败!!!!!!");
  return done;
}

void CChatDb::UpdateDrawingPath(uint64_t uniqueId, const WString& localPath) {
  ExecuteTransaction({"UPDATE MessageTbl SET info12 = '" + store::EncodeHexText(localPath) +
                      "' WHERE kTIMMsgUniqueId = " + store::Uint64Sql(uniqueId) + ";"});
}

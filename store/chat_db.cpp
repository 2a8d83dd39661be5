#include "store/chat_db.h"

#include <sqlite3.h>

#include <cstdlib>

#include "platform/trace.h"
#include "store/hex_text.h"
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
  platform::Trace("打开数据库连接成功!!!!!!");
  return true;
}

void CChatDb::Close() {
  std::lock_guard lock(mutex_);
  CloseLocked();
}

void CChatDb::CloseLocked() {
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
  int unusable = SQLITE_OK;
  ExecLocked("begin;");
  for (std::string_view create : store::kCreateTableStatements) {
    // Failures are expected (conversationTbl never parses) and do not stop
    // the sequence.
    int rc = ExecLocked(std::string(create));
    if (IsUnusableFile(rc)) unusable = rc;
  }
  ExecLocked(std::string(store::kCreateConversationIndex));
  ExecLocked("commit;");
  if (unusable != SQLITE_OK) {
    // Never repaired or replaced here: what the file holds may still be
    // recovered by other means. The next sign-in tries again.
    platform::Trace("CChatDb: %s is not a usable database (%s), closed until the next login",
                    path_.c_str(), sqlite3_errstr(unusable));
    if (!sqlite3_get_autocommit(db_)) ExecLocked("rollback;");
    CloseLocked();
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

void CChatDb::BeginLocked() {
  ExecLocked("BEGIN TRANSACTION;");
}

void CChatDb::CommitLocked() {
  int rc = ExecLocked("COMMIT TRANSACTION;");
  if (rc == SQLITE_OK) return;
  platform::Trace("CChatDb: commit failed: %s", sqlite3_errmsg(db_));
  // A transaction left open would swallow every later statement and keep
  // the file locked; what was committed before stays untouched.
  if (!sqlite3_get_autocommit(db_)) ExecLocked("ROLLBACK TRANSACTION;");
}

void CChatDb::ExecuteTransaction(const std::vector<std::string>& statements) {
  std::lock_guard lock(mutex_);
  if (db_ == nullptr || statements.empty()) return;
  BeginLocked();
  bool traced = false;
  for (const std::string& sql : statements) {
    int rc = ExecLocked(sql);
    // A refused duplicate is how one row per message comes about; anything
    // else (a full disk, a damaged file) is worth one line per batch.
    if (rc != SQLITE_OK && (rc & 0xFF) != SQLITE_CONSTRAINT && !traced) {
      platform::Trace("CChatDb: statement failed: %s", sqlite3_errmsg(db_));
      traced = true;
    }
  }
  CommitLocked();
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
                      "' WHERE kTIMMsgUniqueId = " + Uint64Sql(uniqueId) + ";"});
}

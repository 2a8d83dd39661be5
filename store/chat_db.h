#pragma once
// CChatDb: the local history store, one SQLite file Chat.db per signed-in
// user. Opened after each successful sign-in, closed at every sign-out.
//
// The connection is opened without SQLite's own mutex, yet inserts arrive on
// the IM SDK's callback thread and queries on the window thread; every
// statement therefore runs under this object's lock. A store whose file could
// not be opened or is not a database stays closed: every operation is then a
// no-op (queries return false) until the next sign-in opens it again.
//
// Another process may hold the file (a second host, a backup tool reading
// it). A statement then waits up to BusyWait for it; a write that still
// cannot be committed is rolled back and kept, and runs again first in the
// next write, so that no received or sent message is lost while the file is
// busy or the disk full. A schema that could not be committed is created
// again before the next write. What is still kept at Close is tried once
// more, then traced as lost.

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/strings.h"

struct sqlite3;
struct sqlite3_stmt;
struct MessageStru;

namespace store {
struct MessageRow;
}

class CChatDb {
 public:
  // Read-write, create, no-mutex, shared-cache.
  static constexpr int kOpenFlags = 0x28006;
  // How long a statement waits for a file that another connection holds.
  static constexpr int kDefaultBusyWaitMs = 2000;
  // Kept statements beyond this many bytes are dropped (and traced): a file
  // that stays locked must not take all memory.
  static constexpr size_t kMaxKeptBytes = 32u << 20;

  CChatDb() = default;
  ~CChatDb();
  CChatDb(const CChatDb&) = delete;
  CChatDb& operator=(const CChatDb&) = delete;

  // The module's single store. Never destroyed: unloading the module does not
  // close the connection, sign-out does.
  static CChatDb& Instance();

  // The file path as the OS takes it (bytes).
  std::string GetPath() const;

  // Remembers `path` and opens it (closing a connection left open first).
  bool Open(const std::string& path);
  // For connections opened from now on.
  void SetBusyWait(int milliseconds);
  // Statements waiting for the next write because the file was busy.
  size_t KeptStatementCount() const;
  // The nine tables in one transaction, the conversation index, the version.
  void CreateSchema();
  void Close();
  bool IsOpen() const;

  // "BEGIN TRANSACTION;", every statement in order (failures do not stop the
  // rest), "COMMIT TRANSACTION;". An empty list runs nothing.
  void ExecuteTransaction(const std::vector<std::string>& statements);

  // One row per message: its first element that has a row (MessageTbl's
  // unique id refuses the others). Storing a message again leaves the first
  // row as it was.
  void SaveMessage(const WString& loginUserId, const MessageStru& message);
  // A line the module adds itself (a send failure, a group change): stored as
  // a message of `context`'s conversation whose one element has kind -1.
  void SaveLocalNotice(const WString& loginUserId, const MessageStru& context,
                       const WString& notice);
  // History fetched from the server: every message in one transaction.
  void SaveMessageList(const WString& loginUserId, const std::vector<MessageStru>& messages);

  // Appends the conversation's newest `limit` rows, newest first, one
  // MessageStru with one element per row. False (list untouched) when the
  // statement cannot be prepared or an id is refused.
  bool QueryCurrentConvMsg(const WString& convId, const WString& loginUserId, int limit,
                           std::vector<MessageStru>& messages);

  // Deletes the conversation's rows; true when the delete ran.
  bool RunSql(const WString& loginUserId, const WString& convId);

  // Points a stored drawing message (custom msgType 1) at its local copy.
  void UpdateDrawingPath(uint64_t uniqueId, const WString& localPath);

 private:
  int ExecLocked(const std::string& sql);
  void CreateSchemaLocked();
  void CheckVersionLocked();
  void CloseLocked();
  bool CommitLocked();
  // One transaction: the kept statements, then `statements`, then `rows`.
  // Committed, or rolled back and all of it kept for the next write.
  void WriteLocked(const std::vector<std::string>& statements,
                   const std::vector<store::MessageRow>& rows);
  // False when the batch must stop and be kept (busy file, full disk).
  bool StatementDoneLocked(int rc, bool& traced);
  int InsertRowLocked(const store::MessageRow& row);
  void KeepLocked(const std::vector<std::string>& statements,
                  const std::vector<store::MessageRow>& rows);
  sqlite3_stmt* InsertStatementLocked(size_t infoCount);

  mutable std::mutex mutex_;
  sqlite3* db_ = nullptr;
  std::string path_;
  int busy_wait_ms_ = kDefaultBusyWaitMs;
  bool schema_pending_ = false;
  std::vector<std::string> kept_;
  size_t kept_bytes_ = 0;
  // Reused insert statements of SaveMessageList, by number of info columns.
  std::map<size_t, sqlite3_stmt*> insert_statements_;
};

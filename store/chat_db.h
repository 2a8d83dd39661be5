#pragma once
// CChatDb: the local history store, one SQLite file Chat.db per signed-in
// user. Opened after each successful sign-in, closed at every sign-out.
//
// The connection is opened without SQLite's own mutex, yet inserts arrive on
// the IM SDK's callback thread and queries on the window thread; every
// statement therefore runs under this object's lock. A store whose file could
// not be opened or is not a database stays closed: every operation is then a
// no-op (queries return false) until the next sign-in opens it again.

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
  void CheckVersionLocked();
  void CloseLocked();
  void BeginLocked();
  void CommitLocked();
  void SaveRowsLocked(const std::vector<store::MessageRow>& rows);
  sqlite3_stmt* InsertStatementLocked(size_t infoCount);

  mutable std::mutex mutex_;
  sqlite3* db_ = nullptr;
  std::string path_;
  // Reused insert statements of SaveMessageList, by number of info columns.
  std::map<size_t, sqlite3_stmt*> insert_statements_;
};

// CChatDb: message rows in and out of MessageTbl.
#include <sqlite3.h>

#include "platform/trace.h"
#include "store/chat_db.h"
#include "store/message_codec.h"
#include "store/sql_id.h"

void CChatDb::SaveMessage(const WString& loginUserId, const MessageStru& message) {
  // One message is one commit (a file sync) anyway; its statements go in as
  // the SQL text the file has always been written with.
  ExecuteTransaction(store::BuildInsertStatements(loginUserId, message));
}

void CChatDb::SaveLocalNotice(const WString& loginUserId, const MessageStru& context,
                              const WString& notice) {
  MessageStru message = context;
  ElemStru elem;
  elem.conv_id = context.conv_id;
  elem.is_from_self = context.is_from_self;
  elem.platform = context.platform;
  elem.elem_type = kElemLocalNotice;
  elem.text = notice;
  message.elems.assign(1, std::move(elem));
  SaveMessage(loginUserId, message);
}

void CChatDb::SaveMessageList(const WString& loginUserId,
                              const std::vector<MessageStru>& messages) {
  // Rows are built before taking the lock: encoding needs no connection.
  std::vector<store::MessageRow> rows;
  rows.reserve(messages.size());
  for (const MessageStru& message : messages) {
    for (store::MessageRow& row : store::BuildMessageRows(loginUserId, message)) {
      rows.push_back(std::move(row));
    }
  }
  std::lock_guard lock(mutex_);
  if (db_ == nullptr || (rows.empty() && kept_.empty())) return;
  WriteLocked({}, rows);
}

sqlite3_stmt* CChatDb::InsertStatementLocked(size_t infoCount) {
  auto found = insert_statements_.find(infoCount);
  if (found != insert_statements_.end()) return found->second;
  std::string sql = store::PreparedInsertSql(infoCount);
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr) !=
      SQLITE_OK) {
    platform::Trace("CChatDb: insert cannot be prepared: %s", sqlite3_errmsg(db_));
    return nullptr;
  }
  insert_statements_.emplace(infoCount, statement);
  return statement;
}

// The same row as its statement from BuildInsertStatements, through one
// reused statement per column set: a history page of thousands of messages
// would otherwise spend most of its time parsing SQL.
int CChatDb::InsertRowLocked(const store::MessageRow& row) {
  sqlite3_stmt* statement = InsertStatementLocked(row.InfoCount());
  if (statement == nullptr) return sqlite3_errcode(db_);
  int rc = store::BindInsert(statement, row);
  if (rc == SQLITE_OK) rc = sqlite3_step(statement);
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  return rc;
}

bool CChatDb::QueryCurrentConvMsg(const WString& convId, const WString& loginUserId, int limit,
                                  std::vector<MessageStru>& messages) {
  auto conv = store::SqlIdText(convId, "conversation id");
  auto login = store::SqlIdText(loginUserId, "login user id");
  if (!conv || !login) return false;
  std::string sql = "select * from MessageTbl where kTIMMsgConvId='" + *conv +
                    "' and loginUserId='" + *login + "' order by kTIMMsgServerTime desc limit " +
                    std::to_string(limit) + ";";
  std::lock_guard lock(mutex_);
  if (db_ == nullptr) return false;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db_, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr) !=
      SQLITE_OK) {
    platform::Trace("QueryCurrentConvMsg 数据库输入的语句校验错误!!!!!!");
    return false;
  }
  int rc;
  while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
    messages.push_back(store::ReadMessageRow(statement));
  }
  if (rc != SQLITE_DONE) {
    // A damaged page: the rows read so far are kept, the file is not touched.
    platform::Trace("CChatDb: QueryCurrentConvMsg stopped: %s", sqlite3_errmsg(db_));
  }
  sqlite3_finalize(statement);
  return true;
}

#pragma once
// MessageStru <-> MessageTbl rows. Which info column holds which field of an
// element kind is the file format of Chat.db and must not change.

#include <sqlite3.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/message_records.h"
#include "store/message_row.h"

namespace store {

// The row of one element, or nullopt for kinds that are not stored (group
// tips and reports, face, location, friend and profile changes, custom
// elements other than drawings and shared-chat messages).
std::optional<MessageRow> BuildElemRow(std::string_view loginUserId, std::string_view convId,
                                       const MessageStru& message, const ElemStru& elem);

// One row per stored element, in element order; none when an id is refused.
std::vector<MessageRow> BuildMessageRows(const WString& loginUserId, const MessageStru& message);

// The insert statement texts of a message, one per stored element.
std::vector<std::string> BuildInsertStatements(const WString& loginUserId,
                                               const MessageStru& message);

// The row the statement is on ("select *" column order) as a message with
// exactly one element.
MessageStru ReadMessageRow(sqlite3_stmt* statement);

}  // namespace store

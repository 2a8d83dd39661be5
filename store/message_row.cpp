#include "store/message_row.h"

#include <charconv>
#include <cstdlib>

#include "store/sql_id.h"

namespace store {
namespace {

std::string InsertColumns(size_t infoCount) {
  std::string sql(kInsertHead);
  for (size_t i = 1; i <= infoCount; ++i) sql += ",info" + std::to_string(i);
  sql += ") values(";
  return sql;
}

void AppendLiteral(std::string& sql, const SqlValue& value) {
  if (value.kind == SqlValue::Kind::kNumber) {
    sql += value.text;
    return;
  }
  sql += '\'';
  sql += DoubleQuotes(value.text);
  sql += '\'';
}

int BindNumber(sqlite3_stmt* statement, int index, const std::string& digits) {
  long long integer = 0;
  const char* end = digits.data() + digits.size();
  auto [ptr, error] = std::from_chars(digits.data(), end, integer);
  if (error == std::errc() && ptr == end) return sqlite3_bind_int64(statement, index, integer);
  return sqlite3_bind_double(statement, index, std::strtod(digits.c_str(), nullptr));
}

}  // namespace

bool IsKnownInfoCount(size_t infoCount) {
  switch (infoCount) {
    case 1:
    case 3:
    case 4:
    case 7:
    case 10:
    case 12:
      return true;
    default:
      return false;
  }
}

std::string RenderInsertSql(const MessageRow& row) {
  std::string sql = InsertColumns(row.InfoCount());
  for (size_t i = 0; i < row.values.size(); ++i) {
    if (i > 0) sql += ',';
    AppendLiteral(sql, row.values[i]);
  }
  sql += ");";
  return sql;
}

std::string PreparedInsertSql(size_t infoCount) {
  std::string sql = InsertColumns(infoCount);
  for (size_t i = 0; i < kHeaderColumnCount + infoCount; ++i) sql += i > 0 ? ",?" : "?";
  sql += ");";
  return sql;
}

int BindInsert(sqlite3_stmt* statement, const MessageRow& row) {
  for (size_t i = 0; i < row.values.size(); ++i) {
    const SqlValue& value = row.values[i];
    int index = static_cast<int>(i) + 1;
    int rc = value.kind == SqlValue::Kind::kNumber
                 ? BindNumber(statement, index, value.text)
                 : sqlite3_bind_text(statement, index, value.text.data(),
                                     static_cast<int>(value.text.size()), SQLITE_STATIC);
    if (rc != SQLITE_OK) return rc;
  }
  return SQLITE_OK;
}

}  // namespace store

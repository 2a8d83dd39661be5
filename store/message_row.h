#pragma once
// One MessageTbl row as the values its insert statement carries. A row has
// the eleven header columns and, by element kind, 1, 3, 4, 7, 10 or 12 info
// columns. The same row is written either as the SQL text the file format
// has always used, or bound to a reused prepared statement (batches).

#include <sqlite3.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace store {

// SQLite integers are signed 64-bit; decimal text of 2^63 or more would be
// stored as a floating-point value, and two such ids would become one. An
// unsigned 64-bit value is therefore written as the signed integer with the
// same bits (2^63 is stored as -9223372036854775808) and read back with
// sqlite3_column_int64 cast to unsigned. Values below 2^63 are stored as
// they always were.
inline std::string Uint64Sql(uint64_t value) {
  return std::to_string(static_cast<int64_t>(value));
}

struct SqlValue {
  enum class Kind {
    kNumber,  // bare decimal, e.g. 1700000000 or -1
    kText,    // between single quotes: ids, encoded text, numbers kept as text
  };
  Kind kind = Kind::kText;
  std::string text;

  static SqlValue Number(long long value) { return {Kind::kNumber, std::to_string(value)}; }
  static SqlValue UnsignedNumber(unsigned long long value) {
    return {Kind::kNumber, std::to_string(value)};
  }
  // A 64-bit id or time, see Uint64Sql.
  static SqlValue Uint64(uint64_t value) { return {Kind::kNumber, Uint64Sql(value)}; }
  static SqlValue Text(std::string value) { return {Kind::kText, std::move(value)}; }
};

inline constexpr size_t kHeaderColumnCount = 11;

struct MessageRow {
  // The eleven header values, then the info values.
  std::vector<SqlValue> values;

  size_t InfoCount() const {
    return values.size() > kHeaderColumnCount ? values.size() - kHeaderColumnCount : 0;
  }
};

inline constexpr std::string_view kInsertHead =
    "insert into MessageTbl(loginUserId,kTIMMsgConvId,kTIMMsgConvType,kTIMMsgServerTime,"
    "kTIMMsgIsFormSelf,kTIMMsgStatus,kTIMMsgUniqueId,kTIMUserProfileNickName,"
    "kTIMUserProfileFaceUrl,kTIMMsgPlatform,kTIMElemType";

// True for the info counts a row can have (1, 3, 4, 7, 10, 12).
bool IsKnownInfoCount(size_t infoCount);

// The insert statement exactly as stored files have always been written.
std::string RenderInsertSql(const MessageRow& row);

// The same statement with ? in place of every value, for binding.
std::string PreparedInsertSql(size_t infoCount);

// Binds the row's values so that the stored row equals that of
// RenderInsertSql: a bare number too large for 64 bits is what SQLite's
// parser makes of it, a floating-point value.
int BindInsert(sqlite3_stmt* statement, const MessageRow& row);

}  // namespace store

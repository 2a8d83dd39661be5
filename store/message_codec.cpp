#include "store/message_codec.h"

#include <cstdlib>

#include "store/hex_text.h"
#include "store/sql_id.h"

namespace store {
namespace {

// First column of info1 in "select *" order (after id, loginUserId and the
// ten message columns).
constexpr int kFirstInfoColumn = 12;

// Appends info values: encoded text, or numbers kept as text in quotes.
class InfoWriter {
 public:
  explicit InfoWriter(std::vector<SqlValue>& values) : values_(values) {}
  InfoWriter& Text(const WString& text) { return Add(EncodeHexText(text)); }
  InfoWriter& Utf8(const std::string& text) { return Add(EncodeHexUtf8(text)); }
  InfoWriter& Number(long long value) { return Add(std::to_string(value)); }
  InfoWriter& Unsigned(unsigned long long value) { return Add(std::to_string(value)); }

 private:
  InfoWriter& Add(std::string value) {
    values_.push_back(SqlValue::Text(std::move(value)));
    return *this;
  }
  std::vector<SqlValue>& values_;
};

// Reads info columns in order, from info1 on.
class InfoReader {
 public:
  explicit InfoReader(sqlite3_stmt* statement) : statement_(statement) {}
  WString Text() { return DecodeHexToText(Next()); }
  std::string Utf8() { return DecodeHexToUtf8(Next()); }
  long long Number() { return std::strtoll(Next().c_str(), nullptr, 10); }
  unsigned long long Unsigned() { return std::strtoull(Next().c_str(), nullptr, 10); }

 private:
  std::string Next() {
    const unsigned char* text = sqlite3_column_text(statement_, column_++);
    return text ? reinterpret_cast<const char*>(text) : "";
  }
  sqlite3_stmt* statement_;
  int column_ = kFirstInfoColumn;
};

// false: the element kind has no row.
bool WriteInfo(const ElemStru& elem, InfoWriter& info) {
  switch (elem.elem_type) {
    case kElemText:
    case kElemLocalNotice:
      info.Text(elem.text);
      return true;
    case kElemImage:
      info.Text(elem.orig_path).Text(elem.thumb_id).Text(elem.large_id);
      info.Text(elem.orig_url).Text(elem.thumb_url).Text(elem.large_url).Number(elem.task_id);
      info.Utf8(elem.orig_download_param)
          .Utf8(elem.thumb_download_param)
          .Utf8(elem.large_download_param);
      return true;
    case kElemSound:
      info.Text(elem.file_id).Utf8(elem.download_param).Number(elem.file_time);
      return true;
    case kElemCustom: {
      const DrawingMsgStru& d = elem.drawing;
      if (d.msgType == kDrawingMsgFile) {
        info.Unsigned(d.msgType).Number(d.fileId).Text(d.fileMd5).Text(d.fileName);
        info.Text(d.fileRefId).Number(d.fileSize).Text(d.fileType).Text(d.fromUserId);
        info.Unsigned(d.subType).Unsigned(d.ts).Unsigned(d.type).Text(d.filePath);
        return true;
      }
      if (d.msgType == kDrawingMsgSharedChat) {
        info.Unsigned(d.msgType).Text(d.fromUserName).Text(d.fromUserId).Unsigned(d.subType);
        info.Unsigned(d.type).Text(d.content).Unsigned(d.ts);
        return true;
      }
      return false;
    }
    case kElemFile:
      info.Text(elem.file_path).Text(elem.file_name).Utf8(elem.download_param);
      info.Number(elem.file_size);
      return true;
    case kElemVideo:
      info.Text(elem.video_id).Text(elem.image_id).Utf8(elem.download_param);
      info.Utf8(elem.image_download_param);
      return true;
    default:
      return false;
  }
}

void ReadInfo(InfoReader& info, ElemStru& elem) {
  switch (elem.elem_type) {
    case kElemText:
    case kElemLocalNotice:
      elem.text = info.Text();
      break;
    case kElemImage:
      elem.orig_path = info.Text();
      elem.thumb_id = info.Text();
      elem.large_id = info.Text();
      elem.orig_url = info.Text();
      elem.thumb_url = info.Text();
      elem.large_url = info.Text();
      elem.task_id = static_cast<int32_t>(info.Number());
      elem.orig_download_param = info.Utf8();
      elem.thumb_download_param = info.Utf8();
      elem.large_download_param = info.Utf8();
      break;
    case kElemSound:
      elem.file_id = info.Text();
      elem.download_param = info.Utf8();
      elem.file_time = static_cast<int32_t>(info.Number());
      break;
    case kElemCustom: {
      DrawingMsgStru& d = elem.drawing;
      d.msgType = static_cast<uint32_t>(info.Number());
      if (d.msgType == kDrawingMsgFile) {
        d.fileId = static_cast<int32_t>(info.Number());
        d.fileMd5 = info.Text();
        d.fileName = info.Text();
        d.fileRefId = info.Text();
        d.fileSize = static_cast<int32_t>(info.Unsigned());
        d.fileType = info.Text();
        d.fromUserId = info.Text();
        d.subType = static_cast<uint32_t>(info.Number());
        d.ts = info.Unsigned();
        d.type = static_cast<uint32_t>(info.Number());
        d.filePath = info.Text();
      } else if (d.msgType == kDrawingMsgSharedChat) {
        d.fromUserName = info.Text();
        d.fromUserId = info.Text();
        d.subType = static_cast<uint32_t>(info.Number());
        d.type = static_cast<uint32_t>(info.Number());
        d.content = info.Text();
        d.ts = info.Unsigned();
      }
      break;
    }
    case kElemFile:
      elem.file_path = info.Text();
      elem.file_name = info.Text();
      elem.download_param = info.Utf8();
      elem.file_size = static_cast<int32_t>(info.Number());
      break;
    case kElemVideo:
      elem.video_id = info.Text();
      elem.image_id = info.Text();
      elem.download_param = info.Utf8();
      elem.image_download_param = info.Utf8();
      break;
    default:
      break;
  }
}

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const unsigned char* text = sqlite3_column_text(statement, column);
  return text ? reinterpret_cast<const char*>(text) : "";
}

}  // namespace

std::optional<MessageRow> BuildElemRow(std::string_view loginUserId, std::string_view convId,
                                       const MessageStru& message, const ElemStru& elem) {
  MessageRow row;
  std::vector<SqlValue>& v = row.values;
  v.reserve(kHeaderColumnCount + 12);
  v.push_back(SqlValue::Text(std::string(loginUserId)));
  v.push_back(SqlValue::Text(std::string(convId)));
  v.push_back(SqlValue::UnsignedNumber(message.conv_type));
  v.push_back(SqlValue::Uint64(message.server_time));
  v.push_back(SqlValue::Number(message.is_from_self ? 1 : 0));
  v.push_back(SqlValue::UnsignedNumber(message.status));
  v.push_back(SqlValue::Uint64(message.unique_id));
  v.push_back(SqlValue::Text(EncodeHexText(message.sender_profile.nick_name)));
  v.push_back(SqlValue::Text(EncodeHexText(message.sender_profile.face_url)));
  v.push_back(SqlValue::UnsignedNumber(message.platform));
  v.push_back(SqlValue::Number(elem.elem_type));
  InfoWriter info(v);
  if (!WriteInfo(elem, info)) return std::nullopt;
  return row;
}

std::vector<MessageRow> BuildMessageRows(const WString& loginUserId, const MessageStru& message) {
  std::vector<MessageRow> rows;
  std::optional<std::string> login = CheckedSqlId(loginUserId, "login user id");
  std::optional<std::string> conv = CheckedSqlId(message.conv_id, "conversation id");
  if (!login || !conv) return rows;
  for (const ElemStru& elem : message.elems) {
    if (auto row = BuildElemRow(*login, *conv, message, elem)) rows.push_back(std::move(*row));
  }
  return rows;
}

std::vector<std::string> BuildInsertStatements(const WString& loginUserId,
                                               const MessageStru& message) {
  std::vector<std::string> statements;
  for (const MessageRow& row : BuildMessageRows(loginUserId, message)) {
    statements.push_back(RenderInsertSql(row));
  }
  return statements;
}

MessageStru ReadMessageRow(sqlite3_stmt* statement) {
  MessageStru message;
  message.conv_id = platform::Utf8ToUtf16(ColumnText(statement, 2));
  message.conv_type = static_cast<uint32_t>(sqlite3_column_int(statement, 3));
  message.server_time = static_cast<uint64_t>(sqlite3_column_int64(statement, 4));
  message.is_from_self = sqlite3_column_int(statement, 5) != 0;
  message.status = static_cast<uint32_t>(sqlite3_column_int(statement, 6));
  message.unique_id = static_cast<uint64_t>(sqlite3_column_int64(statement, 7));
  message.sender_profile.nick_name = DecodeHexToText(ColumnText(statement, 8));
  message.sender_profile.face_url = DecodeHexToText(ColumnText(statement, 9));
  message.platform = static_cast<uint32_t>(sqlite3_column_int(statement, 10));

  ElemStru elem;
  elem.conv_id = message.conv_id;
  elem.is_from_self = message.is_from_self;
  elem.platform = message.platform;
  elem.elem_type = sqlite3_column_int(statement, 11);
  InfoReader info(statement);
  ReadInfo(info, elem);
  message.elems.push_back(std::move(elem));
  return message;
}

}  // namespace store

#pragma once
// Typed reading of SDK JSON into record fields.
//
// A missing key reads as the zero value (empty, 0, false), exactly as when the
// object is indexed with jsoncpp's member-creating accessor. A value of the
// wrong type (an object where a number belongs, a string where a number
// belongs, ...) makes jsoncpp throw Json::LogicError; the per-record parsers
// catch it, trace it and keep what they filled so far.
//
// Conversions beyond plain jsoncpp, on purpose:
//  - integers are taken as their 64-bit value and cut to the field's width
//    (3000000000 read as int32 is negative, -1 read as uint32 is 4294967295);
//  - a string read as a boolean is true when it is not empty.

#include <json/json.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/json_text.h"
#include "platform/strings.h"
#include "records/entry_limits.h"

namespace records {

// The member `key` of `object`, or null when missing. `object` must be an
// object or null, otherwise jsoncpp throws.
const Json::Value& Member(const Json::Value& object, std::string_view key);

void ConvertTo(const Json::Value& value, WString& out);      // UTF-8 -> UTF-16
void ConvertTo(const Json::Value& value, std::string& out);  // kept as UTF-8
void ConvertTo(const Json::Value& value, bool& out);
void ConvertTo(const Json::Value& value, int32_t& out);
void ConvertTo(const Json::Value& value, uint32_t& out);
void ConvertTo(const Json::Value& value, uint64_t& out);

template <typename T>
void Read(const Json::Value& object, std::string_view key, T& out) {
  ConvertTo(Member(object, key), out);
}

// Reads the array under `key` entry by entry with `parse_entry(entry, item)`.
// A missing key or a scalar gives an empty list; an object with members throws
// (it cannot be indexed by position).
// Entries beyond kMaxEntriesPerList or the text's budget are cut.
template <typename T, typename ParseEntry>
void ReadList(const Json::Value& object, std::string_view key, std::vector<T>& out,
              ParseEntry parse_entry) {
  const Json::Value& array = Member(object, key);
  const auto size =
      static_cast<Json::ArrayIndex>(AllowedEntries(key, array.size(), kMaxEntriesPerList));
  out.reserve(out.size() + size);
  for (Json::ArrayIndex i = 0; i < size; ++i) {
    T item;
    parse_entry(array[i], item);
    out.push_back(std::move(item));
  }
}

template <typename T>
void ReadList(const Json::Value& object, std::string_view key, std::vector<T>& out) {
  ReadList(object, key, out, [](const Json::Value& entry, T& item) { ConvertTo(entry, item); });
}

using platform::ParseJsonText;

// The trace line of a record whose parse failed: the marker, the record's name
// and the exception's text.
void TraceRecordFault(const char* record_name, const std::exception& fault);

}  // namespace records

namespace records {

// Runs `fill` and turns a fault into the record's trace line. True when the
// record was filled without a fault; on a fault it keeps what was filled.
template <typename Fill>
bool GuardRecord(const char* record_name, Fill fill) {
  try {
    fill();
    return true;
  } catch (const std::exception& fault) {
    TraceRecordFault(record_name, fault);
    return false;
  }
}

// A JSON array text, each entry parsed with `parse(entry, record)` and
// appended; entries beyond `cap` or the text's entry budget are cut. False
// when the text is not JSON or its root is not an array.
template <typename Record, typename Parse>
bool ParseArrayText(std::string_view text, std::vector<Record>& out, Parse parse, const char* what,
                    size_t cap = kMaxRecordsPerText) {
  Json::Value root;
  if (!ParseJsonText(text, root) || !root.isArray()) return false;
  TextEntryBudget budget;
  const auto size = static_cast<Json::ArrayIndex>(AllowedEntries(what, root.size(), cap));
  out.reserve(out.size() + size);
  for (Json::ArrayIndex i = 0; i < size; ++i) {
    Record record;
    parse(root[i], record);
    out.push_back(std::move(record));
  }
  return true;
}

}  // namespace records

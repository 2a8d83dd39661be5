#include "records/json_reader.h"

#include "platform/trace.h"

namespace records {

const Json::Value& Member(const Json::Value& object, std::string_view key) {
  const Json::Value* found = object.find(key.data(), key.data() + key.size());
  return found ? *found : Json::Value::nullSingleton();
}

void ConvertTo(const Json::Value& value, WString& out) {
  const char* begin = nullptr;
  const char* end = nullptr;
  if (value.isString() && value.getString(&begin, &end)) {
    out = platform::Utf8ToUtf16(std::string_view(begin, static_cast<size_t>(end - begin)));
  } else {
    out = platform::Utf8ToUtf16(value.asString());
  }
}

void ConvertTo(const Json::Value& value, std::string& out) {
  out = value.asString();
}

void ConvertTo(const Json::Value& value, bool& out) {
  if (value.isString()) {
    const char* begin = nullptr;
    const char* end = nullptr;
    out = value.getString(&begin, &end) && begin != end;
  } else {
    out = value.asBool();
  }
}

void ConvertTo(const Json::Value& value, int32_t& out) {
  switch (value.type()) {
    case Json::intValue:
      out = static_cast<int32_t>(value.asInt64());
      break;
    case Json::uintValue:
      out = static_cast<int32_t>(value.asUInt64());
      break;
    default:
      out = value.asInt();
  }
}

void ConvertTo(const Json::Value& value, uint32_t& out) {
  switch (value.type()) {
    case Json::intValue:
      out = static_cast<uint32_t>(value.asInt64());
      break;
    case Json::uintValue:
      out = static_cast<uint32_t>(value.asUInt64());
      break;
    default:
      out = value.asUInt();
  }
}

void ConvertTo(const Json::Value& value, uint64_t& out) {
  if (value.type() == Json::intValue) {
    out = static_cast<uint64_t>(value.asInt64());
  } else {
    out = value.asUInt64();
  }
}

void TraceRecordFault(const char* record_name, const std::exception& fault) {
  platform::Trace(">>>>>>>>>>>>>>>>>>>>>>>>>%s%s", record_name, fault.what());
}

}  // namespace records

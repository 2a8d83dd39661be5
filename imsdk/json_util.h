#pragma once
// JSON text in and out, and a type-checked reader for request parameters:
// a member of the wrong type marks the reader bad instead of throwing.
#include <json/json.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/json_text.h"

namespace imsdk {

// Parses `text` without throwing; false for text that is not JSON or passes
// one of `limits`.
bool ParseJson(const std::string& text, Json::Value* out,
               const platform::JsonLimits& limits = platform::kEventJsonLimits);
// Compact one-line text.
std::string WriteJson(const Json::Value& value);

class ParamReader {
 public:
  // `value` must be an object or null (null reads as an empty object).
  explicit ParamReader(const Json::Value& value);
  bool ok() const { return ok_; }
  bool Has(const char* key) const;
  std::string String(const char* key, const std::string& fallback = {});
  uint64_t UInt64(const char* key, uint64_t fallback = 0);
  int64_t Int64(const char* key, int64_t fallback = 0);
  bool Bool(const char* key, bool fallback = false);
  std::vector<std::string> StringArray(const char* key);
  // The member when it is an object (or absent: null); else marks bad.
  const Json::Value& Object(const char* key);

 private:
  const Json::Value* Member(const char* key) const;
  const Json::Value& value_;
  bool ok_;
};

}  // namespace imsdk

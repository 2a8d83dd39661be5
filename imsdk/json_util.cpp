#include "imsdk/json_util.h"

#include <memory>

namespace imsdk {

bool ParseJson(const std::string& text, Json::Value* out, const platform::JsonLimits& limits) {
  return platform::ParseJsonText(text, *out, nullptr, limits);
}

std::string WriteJson(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = true;
  return Json::writeString(builder, value);
}

ParamReader::ParamReader(const Json::Value& value)
    : value_(value), ok_(value.isObject() || value.isNull()) {}

const Json::Value* ParamReader::Member(const char* key) const {
  if (!value_.isObject()) return nullptr;
  const Json::Value* member = value_.find(key, key + std::char_traits<char>::length(key));
  if (member == nullptr || member->isNull()) return nullptr;
  return member;
}

bool ParamReader::Has(const char* key) const {
  return Member(key) != nullptr;
}

std::string ParamReader::String(const char* key, const std::string& fallback) {
  const Json::Value* m = Member(key);
  if (m == nullptr) return fallback;
  if (!m->isString()) {
    ok_ = false;
    return fallback;
  }
  return m->asString();
}

uint64_t ParamReader::UInt64(const char* key, uint64_t fallback) {
  const Json::Value* m = Member(key);
  if (m == nullptr) return fallback;
  if (!m->isUInt64()) {
    ok_ = false;
    return fallback;
  }
  return m->asUInt64();
}

int64_t ParamReader::Int64(const char* key, int64_t fallback) {
  const Json::Value* m = Member(key);
  if (m == nullptr) return fallback;
  if (!m->isInt64()) {
    ok_ = false;
    return fallback;
  }
  return m->asInt64();
}

bool ParamReader::Bool(const char* key, bool fallback) {
  const Json::Value* m = Member(key);
  if (m == nullptr) return fallback;
  if (!m->isBool()) {
    ok_ = false;
    return fallback;
  }
  return m->asBool();
}

std::vector<std::string> ParamReader::StringArray(const char* key) {
  std::vector<std::string> out;
  const Json::Value* m = Member(key);
  if (m == nullptr) return out;
  if (!m->isArray()) {
    ok_ = false;
    return out;
  }
  for (const auto& entry : *m) {
    if (!entry.isString()) {
      ok_ = false;
      return {};
    }
    out.push_back(entry.asString());
  }
  return out;
}

const Json::Value& ParamReader::Object(const char* key) {
  static const Json::Value kNull;
  const Json::Value* m = Member(key);
  if (m == nullptr) return kNull;
  if (!m->isObject()) {
    ok_ = false;
    return kNull;
  }
  return *m;
}

}  // namespace imsdk

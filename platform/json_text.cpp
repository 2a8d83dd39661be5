#include "platform/json_text.h"

#include <memory>

#include "platform/trace.h"

namespace platform {
namespace {

// Walks the text once, outside strings, to find its depth and an upper
// estimate of its values (every comma, bracket and brace starts at most one),
// so that a hostile text is refused before jsoncpp allocates anything.
std::string CheckShape(std::string_view text, const JsonLimits& limits) {
  if (text.size() > limits.max_bytes) {
    return "text of " + std::to_string(text.size()) + " bytes is over the limit of " +
           std::to_string(limits.max_bytes);
  }
  size_t depth = 0;
  size_t values = 1;
  bool in_string = false;
  bool escaped = false;
  for (const char c : text) {
    if (in_string) {
      if (escaped) {
        escaped = false;
      } else if (c == '\\') {
        escaped = true;
      } else if (c == '"') {
        in_string = false;
      }
      continue;
    }
    switch (c) {
      case '"':
        in_string = true;
        break;
      case '[':
      case '{':
        if (++depth > limits.max_depth) {
          return "nesting deeper than " + std::to_string(limits.max_depth);
        }
        ++values;
        break;
      case ']':
      case '}':
        if (depth > 0) --depth;
        break;
      case ',':
        ++values;
        break;
      default:
        break;
    }
    if (values > limits.max_values) {
      return "more than " + std::to_string(limits.max_values) + " values";
    }
  }
  return {};
}

std::unique_ptr<Json::CharReader> MakeReader(const JsonLimits& limits) {
  Json::CharReaderBuilder builder;
  builder["collectComments"] = false;
  // The shape check already refused anything deeper; this only keeps jsoncpp's
  // own limit from ever being the one that applies.
  builder["stackLimit"] = static_cast<Json::UInt>(limits.max_depth + 2);
  return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

bool Refuse(std::string reason, Json::Value& root, std::string* errors) {
  Trace("ParseJsonText: %s", reason.c_str());
  root = Json::Value();
  if (errors) *errors = std::move(reason);
  return false;
}

}  // namespace

bool ParseJsonText(std::string_view text, Json::Value& root, std::string* errors,
                   const JsonLimits& limits) {
  root = Json::Value();
  if (std::string reason = CheckShape(text, limits); !reason.empty()) {
    return Refuse(std::move(reason), root, errors);
  }
  try {
    // A reader is not safe to share between threads, and a thread_local one
    // would pin the module in memory after it is unloaded: one per call, which
    // costs far less than the parse itself.
    const std::unique_ptr<Json::CharReader> reader = MakeReader(limits);
    std::string parse_errors;
    if (reader->parse(text.data(), text.data() + text.size(), &root, &parse_errors)) return true;
    return Refuse(std::move(parse_errors), root, errors);
  } catch (const std::exception& fault) {
    return Refuse(fault.what(), root, errors);
  }
}

}  // namespace platform

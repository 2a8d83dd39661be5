#pragma once
// The one way outside JSON text (from the SDK, the host, files on disk) is
// parsed. It never throws: jsoncpp throws rather than reports when nesting
// passes its limit, and an exception leaving an SDK callback ends the host.
// It also bounds what one text may cost before jsoncpp builds its tree.

#include <json/json.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

struct JsonLimits {
  size_t max_bytes;   // length of the text
  size_t max_depth;   // nesting of arrays and objects
  size_t max_values;  // values in the tree (an upper estimate, counted before parsing)
};

// What one event or result text of the SDK may cost. The SDK's own JSON is a
// few levels deep, and a history page or a friend list of thousands of
// entries stays far below these; the tree of the largest accepted text is
// some tens of megabytes.
inline constexpr JsonLimits kEventJsonLimits{4u << 20, 64, 500'000};

// Parses UTF-8 JSON text into `root`. False, with `root` null and the reason
// traced (and put into `errors` when given), for anything that is not a
// complete JSON value or passes a limit.
bool ParseJsonText(std::string_view text, Json::Value& root, std::string* errors = nullptr,
                   const JsonLimits& limits = kEventJsonLimits);

}  // namespace platform

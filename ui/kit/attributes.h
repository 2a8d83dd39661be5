#pragma once
// Parsing of skin attribute values: colours, rectangles, switches and image
// descriptions such as "file='..\img\UnReadDot.png' source='0,0,0,0' dest='36,0,44,8'".

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ui/kit/control.h"

namespace ui {

// "#AARRGGBB", "#RRGGBB" (opaque) or the same with a 0x prefix; ARGB result.
std::optional<std::uint32_t> ParseColor(std::string_view text);
// "true" / "false" (any letter case).
std::optional<bool> ParseBool(std::string_view text);
// "l,t,r,b".
std::optional<Rect> ParseRect(std::string_view text);

struct ImageAttribute {
  std::string file;            // as written; empty means "no image"
  std::optional<Rect> source;  // part of the image; absent or all zero = whole image
  std::optional<Rect> dest;    // place in the control; absent = the whole control
};

// A bare path or key='value' pairs (file, source, dest). An empty value is a
// valid "no image". Unbalanced quotes, unknown keys and bad rectangles give
// nullopt.
std::optional<ImageAttribute> ParseImageAttribute(std::string_view text);

// Turns a skin-relative path ("..\img\x.png", backslashes or slashes) into a
// path relative to `baseFolder`. Absolute paths stay as they are.
std::string ResolveSkinPath(std::string_view path, std::string_view baseFolder);

}  // namespace ui

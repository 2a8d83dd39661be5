#include "ui/kit/attributes.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <vector>

namespace ui {
namespace {

std::string_view Trim(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return s;
}

bool ParseInt(std::string_view s, int& out) {
  s = Trim(s);
  if (s.empty()) return false;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && end == s.data() + s.size();
}

}  // namespace

std::optional<std::uint32_t> ParseColor(std::string_view text) {
  text = Trim(text);
  if (text.starts_with('#')) {
    text.remove_prefix(1);
  } else if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
  } else {
    return std::nullopt;
  }
  if (text.size() != 8 && text.size() != 6) return std::nullopt;
  std::uint32_t value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (text.size() == 6) value |= 0xFF000000u;
  return value;
}

std::optional<bool> ParseBool(std::string_view text) {
  std::string lower(Trim(text));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (lower == "true") return true;
  if (lower == "false") return false;
  return std::nullopt;
}

std::optional<Rect> ParseRect(std::string_view text) {
  int v[4];
  for (int i = 0; i < 4; ++i) {
    size_t comma = text.find(',');
    std::string_view part = i < 3 ? text.substr(0, comma) : text;
    if ((i < 3 && comma == std::string_view::npos) || !ParseInt(part, v[i])) return std::nullopt;
    if (i < 3) text.remove_prefix(comma + 1);
  }
  return Rect{v[0], v[1], v[2], v[3]};
}

std::optional<ImageAttribute> ParseImageAttribute(std::string_view text) {
  text = Trim(text);
  ImageAttribute image;
  if (text.empty()) return image;
  if (text.find('=') == std::string_view::npos) {  // a bare path
    image.file = std::string(text);
    return image;
  }
  while (!text.empty()) {
    size_t eq = text.find('=');
    if (eq == std::string_view::npos) return std::nullopt;
    std::string_view key = Trim(text.substr(0, eq));
    text.remove_prefix(eq + 1);
    text = Trim(text);
    if (text.empty() || (text.front() != '\'' && text.front() != '"')) return std::nullopt;
    char quote = text.front();
    size_t close = text.find(quote, 1);
    if (close == std::string_view::npos) return std::nullopt;
    std::string_view value = text.substr(1, close - 1);
    text = Trim(text.substr(close + 1));
    if (key == "file") {
      image.file = std::string(value);
    } else if (key == "source" || key == "dest") {
      std::optional<Rect> rect = ParseRect(value);
      if (!rect) return std::nullopt;
      (key == "source" ? image.source : image.dest) = rect;
    } else {
      return std::nullopt;
    }
  }
  return image;
}

std::string ResolveSkinPath(std::string_view path, std::string_view baseFolder) {
  std::string p(path);
  std::replace(p.begin(), p.end(), '\\', '/');
  if (p.empty() || p.front() == '/' || (p.size() > 1 && p[1] == ':')) return p;
  std::vector<std::string> parts;
  std::string base(baseFolder);
  std::replace(base.begin(), base.end(), '\\', '/');
  bool absolute = !base.empty() && base.front() == '/';
  auto push = [&parts](std::string_view s) {
    while (!s.empty()) {
      size_t slash = s.find('/');
      std::string_view part = s.substr(0, slash);
      if (part == "..") {
        if (!parts.empty() && parts.back() != "..") {
          parts.pop_back();
        } else {
          parts.emplace_back(part);
        }
      } else if (!part.empty() && part != ".") {
        parts.emplace_back(part);
      }
      if (slash == std::string_view::npos) break;
      s.remove_prefix(slash + 1);
    }
  };
  push(base);
  push(p);
  std::string out = absolute ? "/" : "";
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i) out += '/';
    out += parts[i];
  }
  return out;
}

}  // namespace ui

#include "service/drawings/drawing_files.h"

#include "service/drawings/file_md5.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <system_error>

namespace service::drawings {
namespace {

namespace fs = std::filesystem;

constexpr const char16_t* kDrawingTypes[] = {u"DWG", u"DXF", u"DWT", u"DWS"};

WString FileName(const WString& path) {
  const size_t slash = path.find_last_of(u"/\\");
  return slash == WString::npos ? path : path.substr(slash + 1);
}

}  // namespace

WString DrawingTypeOf(const WString& path) {
  const size_t slash = path.find_last_of(u"/\\");
  const size_t dot = path.rfind(u'.');
  if (dot == WString::npos || (slash != WString::npos && dot < slash)) return WString();
  WString ext = path.substr(dot + 1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](char16_t c) { return c >= u'a' && c <= u'z' ? char16_t(c - u'a' + u'A') : c; });
  return ext;
}

bool IsDrawingFile(const WString& path) {
  const WString ext = DrawingTypeOf(path);
  return std::any_of(std::begin(kDrawingTypes), std::end(kDrawingTypes),
                     [&](const char16_t* type) { return ext == type; });
}

std::optional<DrawingMsgStru> DrawingOfFile(const WString& path) {
  if (!IsDrawingFile(path)) return std::nullopt;
  std::error_code error;
  const fs::path native(platform::Utf16ToUtf8(path));
  if (!fs::is_regular_file(native, error)) return std::nullopt;
  const uintmax_t size = fs::file_size(native, error);
  if (error || size > static_cast<uintmax_t>(std::numeric_limits<int32_t>::max())) {
    return std::nullopt;
  }
  std::optional<std::string> md5 = FileMd5(path);
  if (!md5) return std::nullopt;
  DrawingMsgStru drawing;
  drawing.msgType = kDrawingMsgFile;
  drawing.fileMd5 = platform::Utf8ToUtf16(*md5);
  drawing.fileName = FileName(path);
  drawing.filePath = path;
  drawing.fileSize = static_cast<int32_t>(size);
  drawing.fileType = DrawingTypeOf(path);
  return drawing;
}

}  // namespace service::drawings

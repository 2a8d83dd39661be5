#include "ui/rules/send_limits.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "ui/rules/busy_file.h"

namespace ui::rules {
namespace {

using platform::W;

// The extension after the last dot of the last path element, upper-cased.
WString UpperExtension(const WString& path) {
  size_t slash = path.find_last_of(u"/\\");
  size_t dot = path.rfind(u'.');
  if (dot == WString::npos || (slash != WString::npos && dot < slash)) return {};
  return platform::ToUpper(std::u16string_view(path).substr(dot + 1));
}

template <size_t N>
bool HasExtension(const WString& path, const std::array<std::u16string_view, N>& extensions) {
  WString ext = UpperExtension(path);
  return !ext.empty() && std::find(extensions.begin(), extensions.end(), ext) != extensions.end();
}

}  // namespace

bool IsNothingToSend(std::u16string_view text) {
  return text.find_first_not_of(u' ') == std::u16string_view::npos;
}

std::optional<uint64_t> FileSize(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return std::nullopt;
  return static_cast<uint64_t>(st.st_size);
}

bool NamesLargeFile(const WString& text) {
  const std::string path = platform::Utf16ToUtf8(text);
  struct stat st {};
  if (path.empty() || path.find('\0') != std::string::npos || ::stat(path.c_str(), &st) != 0) {
    return false;
  }
  return S_ISREG(st.st_mode) && static_cast<uint64_t>(st.st_size) > kMaxTextFileBytes;
}

bool IsDrawingFile(const WString& path) {
  static constexpr std::array<std::u16string_view, 4> kDrawings = {u"DWG", u"DXF", u"DWT", u"DWS"};
  return HasExtension(path, kDrawings);
}

bool IsPictureFile(const WString& path) {
  static constexpr std::array<std::u16string_view, 5> kPictures = {u"BMP", u"JPG", u"JPEG", u"GIF",
                                                                   u"PNG"};
  return HasExtension(path, kPictures);
}

Verdict CheckAttachment(AttachmentKind kind, const WString& path) {
  if (kind == AttachmentKind::kFile && IsDrawingFile(path)) return Verdict::kDrawing;
  const std::string local = platform::Utf16ToUtf8(path);
  if (IsOpenElsewhere(local)) return Verdict::kBusy;
  uint64_t limit = kind == AttachmentKind::kPicture ? kMaxPictureBytes : kMaxFileBytes;
  return ExceedsLimit(FileSize(local), limit) ? Verdict::kTooLarge : Verdict::kSend;
}

Refusal TextTooLargeRefusal() {
  return {W("发送"), W("发送文本最大为8000字节")};
}

std::optional<Refusal> RefusalFor(AttachmentKind kind, Verdict verdict) {
  const bool picture = kind == AttachmentKind::kPicture;
  const WString title = W(picture ? "发送图片" : "发送文件");
  switch (verdict) {
    case Verdict::kSend:
      return std::nullopt;
    case Verdict::kDrawing:
      return Refusal{title, W("该功能不能发送图纸，请使用发送图纸功能。")};
    case Verdict::kBusy:
      return Refusal{title, W(picture ? "不能发送正在被打开的图片" : "不能发送正在被打开的文件。")};
    case Verdict::kTooLarge:
      return Refusal{title, W(picture ? "发送图片最大为100M" : "发送文件最大为100MB。")};
  }
  return std::nullopt;
}

FileFilter FilterFor(AttachmentKind kind) {
  if (kind == AttachmentKind::kPicture) {
    return {W("图像文件(*.bmp;*.jpg;*.jpeg;*.gif;*.png)"), u"*.bmp;*.jpg;*.jpeg;*.gif;*.png"};
  }
  return {W("文件(*.*)"), u"*.*"};
}

}  // namespace ui::rules

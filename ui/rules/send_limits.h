#pragma once
// What the composer checks before it hands a text, a picture or a file to
// the service, and the words of each refusal. No toolkit here; the file
// system is read directly.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/strings.h"

namespace ui::rules {

// A text that is the path of an existing file larger than this is refused
// (the long-standing behaviour; no other length check is made on texts).
inline constexpr uint64_t kMaxTextFileBytes = 8000;
// 28 MiB, although the refusal says "100M": both are kept as they are.
inline constexpr uint64_t kMaxPictureBytes = 0x1C00000;
inline constexpr uint64_t kMaxFileBytes = 0x6400000;  // 100 MiB

// Nothing is sent for an empty text or one of spaces (U+0020) only; any
// other white space (a tab, a line break) is content.
bool IsNothingToSend(std::u16string_view text);

// The size of a file; nullopt when its status cannot be read.
std::optional<uint64_t> FileSize(const std::string& path);

// Sizes of 2 GiB and more are always refused: they never fit a limit here.
inline bool ExceedsLimit(std::optional<uint64_t> size, uint64_t limit) {
  return size.has_value() && *size > limit;
}

// True when `text`, taken as a path, names an existing regular file over
// kMaxTextFileBytes.
bool NamesLargeFile(const WString& text);

// The drawing extensions DWG, DXF, DWT and DWS, in any letter case.
bool IsDrawingFile(const WString& path);
// The picture extensions of the picture button's filter (bmp, jpg, jpeg,
// gif, png), in any letter case.
bool IsPictureFile(const WString& path);

enum class AttachmentKind { kPicture, kFile };

enum class Verdict {
  kSend,
  kDrawing,   // files only: drawings go through the drawing button
  kBusy,      // see IsOpenElsewhere
  kTooLarge,  // over the kind's limit
};

// The checks of the picture and file buttons, in their order.
Verdict CheckAttachment(AttachmentKind kind, const WString& path);

struct Refusal {
  WString title;
  WString text;
};

// The message box for a refused text over kMaxTextFileBytes.
Refusal TextTooLargeRefusal();
// The message box for a refused attachment; nullopt for kSend.
std::optional<Refusal> RefusalFor(AttachmentKind kind, Verdict verdict);

// The open-file dialog's filter of each button: the text shown and the
// patterns (separated by ';').
struct FileFilter {
  WString text;
  WString patterns;
};
FileFilter FilterFor(AttachmentKind kind);

}  // namespace ui::rules

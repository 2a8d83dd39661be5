#pragma once
// The message view's rules that need no window: which template an item
// gets, its header, the file-type key of a file, the picture shown for a
// download state, the voice label, size and time-separator texts.

#include <cstdint>
#include <ctime>
#include <string_view>

#include "platform/strings.h"
#include "records/elem_records.h"

namespace ui::main {

inline constexpr std::string_view kSystemReminderTemplate = "SystemReminder.xml";
inline constexpr std::string_view kMyselfTemplate = "MyselfChatItem.xml";
inline constexpr std::string_view kFriendTemplate = "FriendChatItem.xml";

// Custom sub-types the view renders its own way.
inline constexpr int32_t kCustomDrawing = 1;
inline constexpr int32_t kCustomNotice = 2;

// Notices (kind -1, custom sub-type 2) get the system line whoever sent them.
std::string_view TemplateFor(const ElemStru& elem, bool fromSelf);
bool IsNotice(const ElemStru& elem);
// A custom element carrying a drawing file.
bool IsDrawingElem(const ElemStru& elem);

// "<name> YYYY/MM/DD HH:MM" in local time.
WString ItemHeader(const WString& senderName, std::time_t time);

// The upper-case extension when it has an icon, else "UNKNOW".
WString FileTypeKey(const WString& fileName);

// Transfer states of an element's download or upload.
enum class TransferState { kNone = 0, kInProgress = 1, kDone = 2, kFailed = 3 };
inline constexpr std::time_t kPictureStallSeconds = 61;
// A picture download in progress for 61 s or more has failed.
TransferState ExpireStalledPicture(TransferState state, std::time_t started, std::time_t now);

// Image names (in the module's image folder).
std::u16string_view PictureStateImage(TransferState state);  // "" once done: the file itself
WString VoiceLabel(int32_t seconds);                         // "%d s"
WString SizeText(int64_t bytes);                             // "12.5 KB"

// Messages further apart than this get a time line between them.
inline constexpr std::time_t kSeparatorGapSeconds = 5 * 60;
bool NeedsTimeSeparator(std::time_t previous, std::time_t current);
// "HH:MM" on the day of `now`, "YYYY/MM/DD HH:MM" before.
WString SeparatorText(std::time_t time, std::time_t now);

}  // namespace ui::main

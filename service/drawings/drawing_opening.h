#pragma once
// Opening the drawing of a drawing message (a double-click on its item).
//
// The host's cloud space is asked first whether the drawing still exists
// (OpenCloudDrawing with the message's reference); gone (406 or 6) tells
// "图纸不存在或已被删除!", any other failure stops quietly. While a shared
// chat runs nothing is opened. A received drawing is fetched through the
// host into the download folder once; its stored row is then pointed at the
// local copy (the drawing-path update) and so is `message`. The host opens
// the local file; a failure tells "打开图纸失败!!!".
//
// Window thread only.

#include "host/user_prompt.h"
#include "platform/strings.h"
#include "records/message_records.h"

namespace service::drawings {

enum class DrawingOpenStep {
  kNotADrawing,      // the message carries no drawing file
  kUnavailable,      // no host service (traced)
  kGone,             // removed from the space (box)
  kCheckFailed,      // the space could not be asked (quiet)
  kInSharedSession,  // a shared chat runs: nothing opened
  kFetchFailed,      // the drawing could not be fetched (box)
  kOpenFailed,       // the host could not open the local copy (box)
  kOpened,
};

// `downloadFolder` receives fetched drawings.
DrawingOpenStep OpenDrawingMessage(MessageStru& message, const WString& downloadFolder,
                                   host::UserPrompt& prompt);

}  // namespace service::drawings

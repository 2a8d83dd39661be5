#pragma once
// Drawing files on disk: which files count as drawings, and the payload
// fields a file gives a drawing message.

#include <optional>

#include "platform/strings.h"
#include "records/drawing_msg.h"

namespace service::drawings {

// DWG, DXF, DWT and DWS, in any letter case.
bool IsDrawingFile(const WString& path);

// The payload's file type: the extension in upper case ("DWG"), empty when none.
WString DrawingTypeOf(const WString& path);

// Name, size, MD5, type (the upper-case extension, "DWG") and local path of
// an existing drawing file; none when it is not a drawing, not a readable
// regular file, or larger than a payload's size field holds.
std::optional<DrawingMsgStru> DrawingOfFile(const WString& path);

}  // namespace service::drawings

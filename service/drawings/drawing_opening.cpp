#include "service/drawings/drawing_opening.h"

#include <filesystem>
#include <system_error>

#include "host/host_access.h"
#include "host/host_texts.h"
#include "platform/folders.h"
#include "platform/trace.h"
#include "service/drawings/drawing_texts.h"
#include "store/chat_db.h"

namespace service::drawings {
namespace {

constexpr const char* kTag = "CIMWnd::OpenDrawing  error ";
// The space's answers for a drawing that is no longer there.
constexpr int32_t kDrawingRemoved = 406;
constexpr int32_t kDrawingMissing = 6;

ElemStru* DrawingElem(MessageStru& message) {
  for (ElemStru& elem : message.elems) {
    if (elem.elem_type == kElemCustom && elem.drawing.msgType == kDrawingMsgFile) return &elem;
  }
  return nullptr;
}

bool IsFile(const WString& path) {
  std::error_code error;
  return !path.empty() && std::filesystem::is_regular_file(platform::Utf16ToUtf8(path), error);
}

// Only the file name of what the sender wrote: it must not climb out of the
// download folder.
WString SafeFileName(const WString& name) {
  const size_t slash = name.find_last_of(u"/\\");
  WString base = slash == WString::npos ? name : name.substr(slash + 1);
  if (base.empty() || base == u"." || base == u"..") base = u"drawing.dwg";
  return base;
}

}  // namespace

DrawingOpenStep OpenDrawingMessage(MessageStru& message, const WString& downloadFolder,
                                   host::UserPrompt& prompt) {
  ElemStru* elem = DrawingElem(message);
  if (elem == nullptr) return DrawingOpenStep::kNotADrawing;
  DrawingMsgStru& drawing = elem->drawing;
  host::HostServices host = host::AcquireBothServices(kTag);
  if (!host) return DrawingOpenStep::kUnavailable;

  int32_t reason = 0;
  if (!host.cloud->OpenCloudDrawing(drawing.fileRefId.c_str(), reason)) {
    if (reason == kDrawingRemoved || reason == kDrawingMissing) {
      prompt.ShowMessage(platform::W(host::text::kErrorTitle),
                         platform::W(host::text::kDrawingGone));
      return DrawingOpenStep::kGone;
    }
    platform::Trace("OpenCloudDrawing failed: %d", reason);
    return DrawingOpenStep::kCheckFailed;
  }
  if (host.app->IsInSharedSession()) return DrawingOpenStep::kInSharedSession;

  const auto tell = [&](DrawingOpenStep step) {
    prompt.ShowMessage(platform::W(text::kOpenDrawingTitle), platform::W(text::kOpenDrawingFailed));
    return step;
  };
  // The sender's own file, or the copy fetched before, is opened as it is. A
  // received message names the sender's path, which means nothing here.
  const WString local = platform::JoinPath(downloadFolder, SafeFileName(drawing.fileName));
  const bool haveCopy =
      IsFile(drawing.filePath) && (message.is_from_self || drawing.filePath == local);
  if (!haveCopy) {
    if (!host.cloud->DownloadPicture(drawing.fileRefId.c_str(), local.c_str())) {
      return tell(DrawingOpenStep::kFetchFailed);
    }
    drawing.filePath = local;
    if (message.unique_id != 0) CChatDb::Instance().UpdateDrawingPath(message.unique_id, local);
  }
  if (!host.app->OpenDrawingFile(drawing.filePath.c_str())) {
    return tell(DrawingOpenStep::kOpenFailed);
  }
  return DrawingOpenStep::kOpened;
}

}  // namespace service::drawings

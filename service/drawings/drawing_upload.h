#pragma once
// Sending a drawing to a conversation (IMWnd_UploadDrawBtn, through the
// drawing selection dialog).
//
// A group keeps its drawings in its cloud space. When the space has the
// drawing already (QuerySpaceFile, then QuerySpaceFileByName) its message
// goes out at once and nothing is uploaded. Otherwise a placeholder shows in
// the conversation at once (SendFakeMsg), the upload worker stores the file
// and reports with 1025 to the window that asked, and Finish sends the real
// message for the placeholder (same local id, same view item) or marks the
// placeholder failed and sends nothing.
//
// A one-to-one chat has no group space: the drawing goes as a file message,
// which the chat service carries itself.
//
// Window thread only.

#include <cstdint>
#include <memory>
#include <optional>

#include "host/upload_worker.h"
#include "platform/strings.h"
#include "platform/window_messages.h"
#include "records/drawing_msg.h"

class CChatTools;

namespace service::drawings {

enum class DrawingSendStep {
  kRefused,        // not an existing drawing file, an upload still runs, or the send was refused
  kNoSpace,        // no host, host signed out, or the group has no cloud space we know
  kSentFromSpace,  // the space had it: its message went out, nothing uploaded
  kSentAsFile,     // one-to-one: sent as a file message
  kUploading,      // placeholder shown, worker started: 1025 reaches `notify`
};

class DrawingUpload {
 public:
  explicit DrawingUpload(CChatTools& tools) : tools_(tools) {}

  // `spaceDrawingId` is the drawing's id in the group's space when the
  // caller knows it, else -1. One upload at a time (1025 says only whether).
  DrawingSendStep Send(const WString& convId, uint32_t convType, const WString& localPath,
                       int32_t spaceDrawingId, platform::WindowHandle notify);
  // 1025 with the worker's wParam (1 = stored). True when the drawing
  // message went out; false when nothing was running or the placeholder failed.
  bool Finish(bool stored);

  bool Uploading() const { return running_.has_value(); }
  // The placeholder of the running upload, 0 when none.
  uint32_t PlaceholderId() const { return running_ ? running_->placeholder : 0; }

 private:
  struct Running {
    WString convId;
    uint32_t convType = 0;
    DrawingMsgStru drawing;
    uint32_t placeholder = 0;
    std::shared_ptr<host::UploadOutcome> outcome;  // the worker's report of the stored drawing
  };

  CChatTools& tools_;
  std::optional<Running> running_;
};

}  // namespace service::drawings

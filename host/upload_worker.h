#pragma once
// The drawing-selection dialog's upload: one worker thread per drawing that
// stores the file in the group's cloud space and reports back by posting
// platform::msg::kUploadFinished (wParam 1 = stored, 0 = failed; lParam 0).

#include <cstdint>
#include <memory>

#include "platform/strings.h"
#include "platform/window_messages.h"

namespace host {

struct UploadTask {
  platform::WindowHandle notify = platform::WindowHandle::kNone;
  WString localPath;
  int32_t groupId = 0;   // the cloud group whose space receives the drawing
  int32_t folderId = 0;  // the folder in that space; 0 = its root
};

// The worker (a platform::ModuleWorkers thread, so that unloading waits for
// it) owns the task and frees it when it has posted. False when the module
// is stopping: nothing is uploaded and the task is freed.
bool StartUploadWorker(std::unique_ptr<UploadTask> task);

}  // namespace host

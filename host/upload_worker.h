#pragma once
// The drawing-selection dialog's upload: one worker thread per drawing that
// stores the file in the group's cloud space and reports back by posting
// platform::msg::kUploadFinished (wParam 1 = stored, 0 = failed; lParam 0).

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "host/host_records.h"
#include "platform/strings.h"
#include "platform/window_messages.h"

namespace host {

// What the host reported of the stored drawing. 1025 says only whether, so
// the worker leaves the id and the reference here before it posts, and the
// window reads them when 1025 arrives.
class UploadOutcome {
 public:
  void Set(const SpaceFileRef& stored);
  // None until the worker has stored the drawing.
  std::optional<SpaceFileRef> Get() const;

 private:
  mutable std::mutex mutex_;
  std::optional<SpaceFileRef> stored_;
};

struct UploadTask {
  platform::WindowHandle notify = platform::WindowHandle::kNone;
  WString localPath;
  int32_t groupId = 0;                     // the cloud group whose space receives the drawing
  int32_t folderId = 0;                    // the folder in that space; 0 = its root
  std::shared_ptr<UploadOutcome> outcome;  // may be null: nobody asks
};

// The worker (a platform::ModuleWorkers thread, so that unloading waits for
// it) owns the task and frees it when it has posted. False when the module
// is stopping: nothing is uploaded and the task is freed.
bool StartUploadWorker(std::unique_ptr<UploadTask> task);

}  // namespace host

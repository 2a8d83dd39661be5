#include "host/upload_worker.h"

#include "host/host_access.h"
#include "platform/module_workers.h"
#include "platform/trace.h"

namespace host {
namespace {

bool Upload(const UploadTask& task) {
  HostCloudService* cloud = AcquireCloudService("UploadSpaceFile  error ");
  if (cloud == nullptr) return false;
  WString drawingRef;
  return cloud->UploadSpaceFile(0, task.localPath.c_str(), u"description", 0, drawingRef, 0,
                                task.groupId, task.folderId);
}

}  // namespace

bool StartUploadWorker(std::unique_ptr<UploadTask> task) {
  // std::function needs a copyable callable: the task travels as shared.
  std::shared_ptr<UploadTask> shared = std::move(task);
  return platform::ModuleWorkers::Instance().Start([task = std::move(shared)](
                                                       std::stop_token) mutable {
    const bool stored = Upload(*task);
    if (!platform::PostMessage(task->notify, platform::msg::kUploadFinished, stored ? 1 : 0, 0)) {
      platform::Trace("UploadSpaceFile: window gone, result %d lost", stored ? 1 : 0);
    }
    task.reset();
  });
}

}  // namespace host

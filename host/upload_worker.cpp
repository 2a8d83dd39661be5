#include "host/upload_worker.h"

#include "host/host_access.h"
#include "platform/module_workers.h"
#include "platform/trace.h"

namespace host {
namespace {

bool Upload(const UploadTask& task) {
  HostCloudService* cloud = AcquireCloudService("UploadSpaceFile  error ");
  if (cloud == nullptr) return false;
  SpaceFileRef stored;
  if (!cloud->UploadSpaceFile(0, task.localPath.c_str(), u"description", 0, stored, 0, task.groupId,
                              task.folderId)) {
    return false;
  }
  if (task.outcome) task.outcome->Set(stored);
  return true;
}

}  // namespace

void UploadOutcome::Set(const SpaceFileRef& stored) {
  std::lock_guard<std::mutex> lock(mutex_);
  stored_ = stored;
}

std::optional<SpaceFileRef> UploadOutcome::Get() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return stored_;
}

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

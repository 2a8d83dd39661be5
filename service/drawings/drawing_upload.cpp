#include "service/drawings/drawing_upload.h"

#include <memory>

#include "host/feature_use.h"
#include "host/host_access.h"
#include "host/upload_worker.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/drawings/drawing_files.h"

namespace service::drawings {
namespace {

constexpr const char* kTag = "CDrawingSelection::UploadDrawing  error ";
constexpr int32_t kSpaceRoot = 0;  // drawings go to the root folder of the group's space
constexpr uint32_t kGroupConversation = 2;

// The drawing as the space has it: by id first, then by name. None when
// the space does not have it.
std::optional<SpaceFileRef> FindInSpace(HostCloudService& cloud, int32_t groupId,
                                        const DrawingMsgStru& drawing, int32_t spaceDrawingId) {
  SpaceFileRef found;
  if (cloud.QuerySpaceFile(groupId, found.drawingRef, nullptr, kSpaceRoot, spaceDrawingId) &&
      !found.drawingRef.empty()) {
    found.drawingId = spaceDrawingId;
    return found;
  }
  WString name = drawing.fileName;
  found = SpaceFileRef{};
  found.drawingId = spaceDrawingId;
  if (cloud.QuerySpaceFileByName(groupId, name, found.drawingRef, kSpaceRoot, found.drawingId) &&
      !found.drawingRef.empty()) {
    return found;
  }
  return std::nullopt;
}

void TakeSpaceFile(DrawingMsgStru& drawing, const SpaceFileRef& stored) {
  drawing.fileRefId = stored.drawingRef;
  if (stored.drawingId > 0) drawing.fileId = stored.drawingId;
}

}  // namespace

DrawingSendStep DrawingUpload::Send(const WString& convId, uint32_t convType,
                                    const WString& localPath, int32_t spaceDrawingId,
                                    platform::WindowHandle notify) {
  std::optional<DrawingMsgStru> drawing = DrawingOfFile(localPath);
  if (!drawing || running_) {
    platform::Trace("UploadDrawing: %s", running_ ? "an upload still runs" : "not a drawing file");
    return DrawingSendStep::kRefused;
  }
  drawing->type = convType;
  if (convType != kGroupConversation) {
    return tools_.OnSendFileElem(convId, convType, drawing->filePath, drawing->fileName,
                                 drawing->fileSize)
               ? DrawingSendStep::kSentAsFile
               : DrawingSendStep::kRefused;
  }
  std::optional<GroupInfo> group = tools_.FindGroup(convId);
  HostCloudService* cloud = host::AcquireCloudService(kTag, host::Gate::kSignedIn);
  if (cloud == nullptr || !group || group->cloud_group_id < 0) {
    platform::Trace("UploadDrawing: no cloud space for the group");
    return DrawingSendStep::kNoSpace;
  }
  const int32_t groupId = group->cloud_group_id;
  if (spaceDrawingId > 0) drawing->fileId = spaceDrawingId;

  if (std::optional<SpaceFileRef> found = FindInSpace(*cloud, groupId, *drawing, spaceDrawingId)) {
    TakeSpaceFile(*drawing, *found);
    return tools_.OnSenddrawingFileElem(convId, convType, *drawing, 0)
               ? DrawingSendStep::kSentFromSpace
               : DrawingSendStep::kRefused;
  }

  host::RecordFeatureUse(host::FeatureUse::kSendDrawing);
  Running running{convId, convType, *drawing, 0, std::make_shared<host::UploadOutcome>()};
  running.placeholder = tools_.SendFakeMsg(convId, convType, *drawing);
  auto task = std::make_unique<host::UploadTask>();
  task->notify = notify;
  task->localPath = drawing->filePath;
  task->groupId = groupId;
  task->folderId = kSpaceRoot;
  task->outcome = running.outcome;
  if (!host::StartUploadWorker(std::move(task))) {
    tools_.FailPlaceholder(running.placeholder);
    return DrawingSendStep::kRefused;
  }
  running_ = std::move(running);
  return DrawingSendStep::kUploading;
}

bool DrawingUpload::Finish(bool stored) {
  if (!running_) return false;
  Running running = std::move(*running_);
  running_.reset();
  // The worker left the stored drawing's id and reference before it posted.
  if (std::optional<SpaceFileRef> reported = running.outcome->Get(); stored && reported) {
    TakeSpaceFile(running.drawing, *reported);
  }
  if (!stored || running.drawing.fileRefId.empty()) {
    platform::Trace("UploadDrawing: %s",
                    stored ? "no reference of the stored drawing" : "upload failed");
    tools_.FailPlaceholder(running.placeholder);
    return false;
  }
  if (tools_.OnSenddrawingFileElem(running.convId, running.convType, running.drawing,
                                   running.placeholder)) {
    return true;
  }
  // A refused send of a placeholder has marked it failed already.
  return false;
}

}  // namespace service::drawings

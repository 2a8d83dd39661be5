#include "service/drawings/space_drawings.h"

#include <algorithm>
#include <limits>

#include "host/host_access.h"
#include "service/chat_tools.h"
#include "service/drawings/drawing_files.h"

namespace service::drawings {
namespace {

constexpr const char* kTreeTag = "CChangeDrawings::DisplayTree error ";

}  // namespace

ConversationDrawings::ConversationDrawings(CChatTools& tools, DrawingUpload& upload, WString convId,
                                           uint32_t convType)
    : tools_(tools), upload_(upload), convId_(std::move(convId)), convType_(convType) {}

std::vector<WString> ConversationDrawings::HostDrawings() {
  std::vector<WString> paths;
  if (HostAppService* app = host::AcquireAppService("CDrawingSelection::InitDrawings  error ")) {
    app->GetOpenDrawings(paths);
  }
  std::erase_if(paths, [](const WString& path) { return !IsDrawingFile(path); });
  return paths;
}

DrawingSendStep ConversationDrawings::Send(const WString& localPath,
                                           platform::WindowHandle notify) {
  return upload_.Send(convId_, convType_, localPath, -1, notify);
}

int32_t ConversationDrawings::CloudGroupId() const {
  std::optional<GroupInfo> group = tools_.FindGroup(convId_);
  return group ? group->cloud_group_id : -1;
}

WString ConversationDrawings::GroupName() const {
  std::optional<GroupInfo> group = tools_.FindGroup(convId_);
  return group ? group->name : WString();
}

bool ConversationDrawings::FillTree(ShareTreeSelection& tree) {
  const int32_t groupId = CloudGroupId();
  HostCloudService* cloud = host::AcquireCloudService(kTreeTag, host::Gate::kSignedIn);
  return cloud != nullptr && groupId >= 0 && cloud->FillShareTree(groupId, tree);
}

bool ConversationDrawings::Share(const ShareTreeDrawing& drawing) {
  DrawingMsgStru payload;
  payload.msgType = kDrawingMsgFile;
  payload.fileId = drawing.drawingId;
  payload.fileName = drawing.name;
  payload.fileRefId = drawing.drawingRef;
  payload.fileSize =
      static_cast<int32_t>(std::min<int64_t>(drawing.size, std::numeric_limits<int32_t>::max()));
  payload.fileType = DrawingTypeOf(drawing.name);
  payload.type = convType_;
  return tools_.OnSenddrawingFileElem(convId_, convType_, payload, 0);
}

}  // namespace service::drawings

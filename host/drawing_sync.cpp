#include "host/drawing_sync.h"

#include "host/host_access.h"
#include "platform/trace.h"

namespace host {
namespace {

DrawingSyncRoute RouteOf(const ReceivedDrawingSync& message) {
  if (message.msgType == 3) {
    return message.subType == 0 ? DrawingSyncRoute::kSendDrawingSync : DrawingSyncRoute::kIgnored;
  }
  if (message.msgType == 2) {
    return message.subType >= 2 && message.subType <= 5 ? DrawingSyncRoute::kUpdateDrawingInfo
                                                        : DrawingSyncRoute::kApplyDrawingSync;
  }
  return DrawingSyncRoute::kIgnored;
}

bool IsSessionConversation(HostAppService& app, const WString& target) {
  const char16_t* key = app.GetSessionKey();
  return key != nullptr && std::u16string_view(key) == target;
}

}  // namespace

DrawingSyncRoute HandleReceivedDrawingSync(const ReceivedDrawingSync& message) {
  const DrawingSyncRoute route = RouteOf(message);
  if (route == DrawingSyncRoute::kIgnored) return route;
  HostAppService* app = AcquireAppService("HandleReceivedDrawingSync  error ");
  if (app == nullptr || !IsSessionConversation(*app, message.target)) {
    return DrawingSyncRoute::kIgnored;
  }
  switch (route) {
    case DrawingSyncRoute::kSendDrawingSync:
      if (!app->sendDrawingSyncMsg(message.content.c_str())) {
        platform::Trace("调用sendDrawingSyncMsg失败!!!!!!!!");
      }
      break;
    case DrawingSyncRoute::kUpdateDrawingInfo:
      if (!app->updateChatDrawingInfo(message.subType)) {
        platform::Trace("调用updateChatDrawingInfo失败!!!!!!!!");
      }
      break;
    case DrawingSyncRoute::kApplyDrawingSync:
      app->ApplyDrawingSync(message.sender.c_str(), message.content.c_str(),
                            static_cast<int32_t>(message.content.size()));
      break;
    case DrawingSyncRoute::kIgnored:
      break;
  }
  return route;
}

}  // namespace host

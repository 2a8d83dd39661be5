#include "host/startup_registration.h"

#include <utility>

#include "host/host_access.h"

namespace host {

bool RegisterModuleCallbacks(DrawingMsgSender sender, HostNotifyCallback recentConversations) {
  HostAppService* app = AcquireAppService("CChatTools::Init  error ");
  if (app == nullptr) return false;
  app->SetDrawingMsgSender(std::move(sender));
  app->SetHostNotifyCallback(std::move(recentConversations));
  return true;
}

}  // namespace host

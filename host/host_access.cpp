#include "host/host_access.h"

#include "platform/trace.h"

namespace host {
namespace {

bool PassesGate(HostCloudService& cloud, const char* tag, Gate gate) {
  if (gate == Gate::kSignedIn && !cloud.IsHostLoggedIn()) {
    platform::Trace("没有登陆%s", tag);
    return false;
  }
  return true;
}

}  // namespace

HostCloudService* AcquireCloudService(const char* tag, Gate gate) {
  HostCloudService* cloud = HostSystem::instance()->GetCloudService();
  if (cloud == nullptr) {
    platform::Trace("指针为空%s", tag);
    return nullptr;
  }
  return PassesGate(*cloud, tag, gate) ? cloud : nullptr;
}

HostAppService* AcquireAppService(const char* tag) {
  HostAppService* app = HostSystem::instance()->GetAppService();
  if (app == nullptr) platform::Trace("指针为空%s", tag);
  return app;
}

HostServices AcquireBothServices(const char* tag, Gate gate) {
  HostSystem* system = HostSystem::instance();
  HostServices services{system->GetCloudService(), system->GetAppService()};
  if (!services) {
    platform::Trace("指针为空%s", tag);
    return {};
  }
  return PassesGate(*services.cloud, tag, gate) ? services : HostServices{};
}

}  // namespace host

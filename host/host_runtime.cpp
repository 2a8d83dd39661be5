// The host runtime library: where HostSystem::instance() lives. It holds
// only the installed pointer; it must not pull in the module's own
// libraries, which would then exist twice in the process.

#include <atomic>

#include "host/host_system.h"
#include "host/null_host.h"

namespace {

host::NullHostSystem& NullHost() {
  static host::NullHostSystem null_host;
  return null_host;
}

// Read by the upload worker as well as the user-interface thread.
std::atomic<HostSystem*> installed{nullptr};

}  // namespace

HostSystem* HostSystem::instance() {
  HostSystem* host = installed.load(std::memory_order_acquire);
  return host != nullptr ? host : &NullHost();
}

HostSystem* HostSystem::Install(HostSystem* host) {
  return installed.exchange(host, std::memory_order_acq_rel);
}

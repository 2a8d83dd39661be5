#pragma once
// The one routine every caller goes through to reach the host: singleton,
// service, null check, and for group and shared-session actions the signed-in
// check. A refusal is traced ("指针为空" or "没有登陆" followed by the caller's
// tag) and nothing is shown; the caller then takes its failure path.

#include "host/host_system.h"

namespace host {

enum class Gate {
  kNone,      // any other operation
  kSignedIn,  // group and shared-session actions: IsHostLoggedIn first
};

// Null when the host gave no service or (with kSignedIn) is signed out.
HostCloudService* AcquireCloudService(const char* tag, Gate gate = Gate::kNone);
HostAppService* AcquireAppService(const char* tag);

struct HostServices {
  HostCloudService* cloud = nullptr;
  HostAppService* app = nullptr;
  explicit operator bool() const { return cloud != nullptr && app != nullptr; }
};

// For callers that need both: empty unless both are there (and, with
// kSignedIn, the host is signed in).
HostServices AcquireBothServices(const char* tag, Gate gate = Gate::kNone);

}  // namespace host

#include "host/shared_session.h"

#include <cstdint>

#include "host/host_access.h"

namespace host {

bool LeaveSharedSessionAtLogout() {
  HostServices host = AcquireBothServices("LogOutIm  error ");
  if (!host || !host.app->IsInSharedSession()) return false;
  // Asked one by one, in this order; the text belongs to the host, so it is
  // copied before the host is asked to leave.
  const int32_t groupId = host.app->GetSessionGroupId();
  const int32_t drawingId = host.app->GetSessionDrawingId();
  const WString sessionText = host.app->GetSessionText();
  host.cloud->LeaveSharedSession(groupId, drawingId, sessionText.c_str());
  host.app->EndSharedSession();
  return true;
}

}  // namespace host

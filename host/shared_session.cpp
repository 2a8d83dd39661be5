#include "host/shared_session.h"

#include "host/host_access.h"

namespace host {

bool LeaveSharedSessionAtLogout() {
  HostServices host = AcquireBothServices("LogOutIm  error ");
  if (!host || !host.app->IsInSharedSession()) return false;
  // The text belongs to the host; copy it before asking the host to leave.
  const WString sessionText = host.app->GetSessionText();
  host.cloud->LeaveSharedSession(host.app->GetSessionGroupId(), host.app->GetSessionDrawingId(),
                                 sessionText.c_str());
  host.app->EndSharedSession();
  return true;
}

}  // namespace host

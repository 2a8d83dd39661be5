#include "host/feature_use.h"

#include "host/host_access.h"

namespace host {

const char* FeatureUseText(FeatureUse feature) {
  switch (feature) {
    case FeatureUse::kAddFriend:
      return "IM-AddFriend";
    case FeatureUse::kCreateGroup:
      return "IM-CreateGroup";
    case FeatureUse::kSendDrawing:
      return "IM-SendDrawing";
    case FeatureUse::kShareChat:
      return "IM-ShareChat";
    case FeatureUse::kCloudManage:
      return "IM-CloudManage";
  }
  return "";
}

void RecordFeatureUse(FeatureUse feature) {
  if (HostAppService* app = AcquireAppService("RecordFeatureUse  error ")) {
    app->RecordFeatureUse(platform::W(FeatureUseText(feature)).c_str());
  }
}

}  // namespace host

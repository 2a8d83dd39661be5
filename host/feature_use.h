#pragma once
// Usage events the module reports to the host.

namespace host {

enum class FeatureUse {
  kAddFriend,    // the add-friend dialog is opened from the main window
  kCreateGroup,  // the create-group dialog is opened
  kSendDrawing,  // a drawing upload to a group's cloud space starts
  kShareChat,    // the user starts a shared chat on a drawing
  kCloudManage,  // the user opens the group's cloud drawing management
};

// "IM-AddFriend", "IM-CreateGroup", ...
const char* FeatureUseText(FeatureUse feature);

// Passes the event to RecordFeatureUse; does nothing without an app service.
void RecordFeatureUse(FeatureUse feature);

}  // namespace host

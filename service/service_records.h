#pragma once
// Records the service layer keeps besides those of the records layer.

#include <cstdint>
#include <string>

#include "platform/strings.h"
#include "records/conversation_records.h"
#include "records/profile_records.h"

// One entry of the recent-conversation list: the conversation record and two
// flag bytes. AddRecentConvID sets both to 1 (a conversation the user or a
// new message brought in); records rebuilt from the SDK's list leave them 0.
// Which conversation a recent record is, without its data.
struct RecentConversationKey {
  WString conv_id;
  uint32_t conv_type = 0;
  bool operator==(const RecentConversationKey&) const = default;
};

struct RecentConversation {
  ConversationInfo_Stru info;
  uint8_t opened = 0;  // opened from this module (or by a new message)
  uint8_t listed = 0;  // to be drawn in the conversation list
};

// A joined group as the service knows it (from the SDK's joined-group list
// and from the host's cloud groups).
struct GroupInfo {
  WString group_id;  // the IM group id
  WString name;
  WString face_url;
  WString owner;                // the owner's IM user id
  int32_t cloud_group_id = -1;  // -1 when the host did not report it
};

// Pending friend requests stand in the unread set under this id.
inline const WString kFriendRequestsUnreadId = u"-1";

// Which message a pending-request page is announced with: the first
// variant posts 3166 (requests changed), the second 3186 (redraw the list).
enum PendencyListVariant : int {
  kPendencyListChanged = 1,
  kPendencyListRefresh = 2,
};

// How far the upload of a message being sent has got (bytes).
struct UploadProgress {
  uint64_t current = 0;
  uint64_t total = 0;
  bool operator==(const UploadProgress&) const = default;
};

// A pending friend request and whether the user has accepted it.
struct PendingFriendRequest {
  FriendAddPendency pendency;
  bool handled = false;
};

// Heap payload of 3182: the answer to a friend request.
struct FriendRequestResult {
  WString identifier;
  int32_t code = 0;
  WString desc;
};

// Where an element download stands; the window reads it on 3164.
struct DownloadState {
  int32_t elem_type = 0;
  int32_t downloaded = 0;
  uint64_t current_size = 0;
  uint64_t total_size = 0;
  uint32_t secondary_status = 0;
  WString path;
};

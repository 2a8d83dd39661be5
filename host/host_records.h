#pragma once
// Records that the host fills for the module. The module constructs them
// empty, hands them to one host operation and owns them afterwards; the
// host never keeps a pointer into them.

#include <cstdint>
#include <vector>

#include "platform/strings.h"

// A person as the host's account directory knows it (search and lookup).
struct AccountInfo {
  // 1 = registered, not yet a friend; 2 = no account for this address (may
  // be invited); 3 = already a friend.
  int32_t relation = 0;
  // 0 = the account has no chat identity yet: PrepareAccountForChat first.
  int32_t flag = 0;
  int32_t accountId = -1;
  WString contact;      // the e-mail address or mobile number it is known by
  WString displayName;  // shown after "用户名: "
  WString avatarUrl;    // fetched with DownloadPicture
  WString imUserId;     // the chat identifier: the account id as decimal text
};

// One member of a cloud group, also the element of every member list the
// module passes to the host.
struct CloudGroupMember {
  int32_t accountId = -1;
  WString imUserId;
  WString displayName;
  WString avatarUrl;
  int32_t role = 0;  // 1 = owner, anything else = ordinary member
};

using CloudMemberList = std::vector<CloudGroupMember>;

// Everything GetGroupMembers knows of one group.
struct GroupDetail {
  int32_t cloudGroupId = -1;  // the id every further group call takes
  WString imGroupId;
  WString name;
  WString ownerImUserId;
  WString avatarUrl;
  WString introduction;
  int32_t memberCount = 0;
  int32_t maxMembers = 0;  // 0 = no limit known
  CloudMemberList members;
};

// The group record of CreateCloudGroup, GetJoinedGroups and GetGroupInfo.
struct CloudGroupInfo {
  int32_t cloudGroupId = -1;
  WString imGroupId;
  WString name;
  WString avatarUrl;
  int32_t memberCount = 0;
};

using CloudGroupList = std::vector<CloudGroupInfo>;

// A drawing stored in a group's cloud space, as UploadSpaceFile reports it.
struct SpaceFileRef {
  int32_t drawingId = -1;  // its id in the space
  WString drawingRef;      // what OpenCloudDrawing and the drawing messages take
};

// One drawing of a group's cloud space as the share tree lists it.
struct ShareTreeDrawing {
  int32_t drawingId = -1;
  int32_t folderId = 0;  // 0 = the space's root
  WString name;          // the file name, extension included
  WString drawingRef;    // what OpenCloudDrawing and the drawing messages take
  int64_t size = 0;      // bytes
};

// The drawing tree the share-tree dialog keeps while it is open; the host
// fills it (FillShareTree) and takes back what it put there in
// ReleaseShareTree.
struct ShareTreeSelection {
  int32_t cloudGroupId = -1;
  std::vector<ShareTreeDrawing> drawings;
};

// A shared chat on a drawing as the host describes it.
struct SharedSessionInfo {
  int32_t groupId = -1;    // cloud group (or account) the session belongs to
  int32_t drawingId = -1;  // the shared drawing in the cloud space
  WString sessionKey;      // the conversation whose drawing is shared
  WString sessionText;     // the host's token for the session
  WString drawingRef;
  int32_t participants = 0;
  int32_t maxParticipants = 0;  // 0 = no limit
};

// One entry the module's recent-conversation provider appends for the host.
struct RecentConversationEntry {
  WString displayName;
  WString conversationId;
  int32_t type = 0;  // 1 = one-to-one, 2 = group
};

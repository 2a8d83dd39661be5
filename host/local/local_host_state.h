#pragma once
// Everything the local host knows, guarded by one lock: the account
// directory, friendships, cloud groups, the drawing space index, the shared
// session and the record of calls. Only the local host's own classes use it.

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/host_system.h"

namespace host::local {

struct LocalAccount {
  int32_t id = -1;
  WString email;
  WString mobile;
  WString displayName;
  WString avatarPath;     // a picture file; DownloadPicture copies it
  bool chatReady = true;  // false until PrepareAccountForChat
};

struct LocalGroup {
  int32_t cloudGroupId = -1;
  WString imGroupId;
  WString name;
  std::map<int32_t, int32_t> roles;  // account id -> role (1 = owner)
};

struct SpaceDrawing {
  int32_t drawingId = -1;
  int32_t groupId = -1;
  int32_t folderId = 0;
  WString name;
  WString storedPath;
};

struct HostCall {
  std::string name;
  std::string args;  // UTF-8, comma separated
};

struct LocalHostState {
  mutable std::mutex mutex;

  std::map<int32_t, LocalAccount> accounts;
  std::set<std::pair<int32_t, int32_t>> friendships;  // (smaller id, larger id)
  std::optional<int32_t> signedIn;

  std::map<int32_t, LocalGroup> groups;
  int32_t nextGroupId = 1001;

  std::string spaceFolder;
  std::vector<SpaceDrawing> drawings;
  int32_t nextDrawingId = 1;
  std::vector<WString> openedCloudDrawings;
  std::vector<WString> openedFiles;

  bool inSession = false;
  SharedSessionInfo session;
  std::map<int32_t, SharedSessionInfo> othersSessions;     // account or group id -> its session
  std::map<int32_t, std::vector<int32_t>> sessionMembers;  // group id -> accounts in its session
  std::vector<WString> openDrawings;                       // the host's open drawing files
  std::chrono::milliseconds uploadDelay{0};
  std::chrono::milliseconds downloadDelay{0};

  DrawingMsgSender drawingMsgSender;
  HostNotifyCallback notifyCallback;

  std::set<std::string> failing;
  std::vector<HostCall> calls;
  std::vector<WString> featureUses;
  std::vector<std::pair<WString, int32_t>> invitations;
  std::vector<std::pair<WString, WString>> appliedSyncs;  // sender, content
  std::vector<WString> sentSyncs;
  std::vector<int32_t> drawingInfoUpdates;
  int newMessageNotices = 0;

  // Records the call; false when the test made this operation fail.
  bool Record(const char* name, std::string args = {}) {
    calls.push_back({name, std::move(args)});
    return failing.count(name) == 0;
  }
  bool SignedIn() const { return signedIn.has_value(); }
  LocalGroup* FindGroup(int32_t cloudGroupId);
  LocalGroup* FindGroup(const WString& imGroupId);
  const LocalGroup* FindGroup(const WString& imGroupId) const;
  bool AreFriends(int32_t a, int32_t b) const;
  AccountInfo Describe(const LocalAccount& account) const;
  CloudGroupMember Member(int32_t accountId, int32_t role) const;
  GroupDetail Detail(const LocalGroup& group) const;
  CloudGroupInfo Info(const LocalGroup& group) const;
};

// The chat user id of an account, and back (-1 when the text is not one).
WString ImUserIdOf(int32_t accountId);
int32_t AccountIdOf(const WString& imUserId);
std::string Utf8(const char16_t* text);
// The reference the space gives a drawing: "<group id>/<drawing id>".
WString RefOf(const SpaceDrawing& drawing);

}  // namespace host::local

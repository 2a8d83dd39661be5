#pragma once
// How the local host learns of the chat engine's groups. The engine calls
// these whenever one of its groups changes; the local host applies the change
// to its cloud group of the same chat id. Every call is idempotent, because
// the module itself also changes the cloud group first (host call, then chat
// request) and the engine then reports the same change back.
//
// Wiring: the demo gives the LocalHost (its Mirror()) to the engine's group
// event hook; tests call it directly. Member ids are chat user ids, which
// for the local host are the account ids in decimal.

#include <vector>

#include "platform/strings.h"

namespace host::local {

class GroupMirror {
 public:
  virtual ~GroupMirror() = default;
  virtual void OnGroupCreated(const WString& imGroupId, const WString& name,
                              const WString& ownerImUserId,
                              const std::vector<WString>& memberImUserIds) = 0;
  virtual void OnMembersJoined(const WString& imGroupId,
                               const std::vector<WString>& memberImUserIds) = 0;
  virtual void OnMembersLeft(const WString& imGroupId,
                             const std::vector<WString>& memberImUserIds) = 0;
  virtual void OnGroupRenamed(const WString& imGroupId, const WString& name) = 0;
  virtual void OnOwnerChanged(const WString& imGroupId, const WString& newOwnerImUserId) = 0;
  virtual void OnGroupDismissed(const WString& imGroupId) = 0;
};

}  // namespace host::local

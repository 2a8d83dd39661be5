#pragma once
// Keeps a GroupMirror (the local host) in step with the embedded chat
// engine's groups for as long as the link lives: it registers itself as the
// engine's group observer and passes every change on with the ids as UTF-16.
// One link at a time; the mirror must outlive the link. Calls arrive on the
// thread that changed the group, outside the engine's lock (see
// imsdk/group_observer.h).

#include "host/local/group_mirror.h"
#include "imsdk/group_observer.h"

namespace host::local {

class EngineGroupLink final : public imsdk::GroupObserver {
 public:
  explicit EngineGroupLink(GroupMirror& mirror);
  // Unregisters; no call reaches the mirror after it.
  ~EngineGroupLink() override;
  EngineGroupLink(const EngineGroupLink&) = delete;
  EngineGroupLink& operator=(const EngineGroupLink&) = delete;

  void OnGroupCreated(const std::string& groupId, const std::string& name, const std::string& owner,
                      const std::vector<std::string>& members) override;
  void OnMembersJoined(const std::string& groupId,
                       const std::vector<std::string>& members) override;
  void OnMembersLeft(const std::string& groupId, const std::vector<std::string>& members) override;
  void OnGroupRenamed(const std::string& groupId, const std::string& name) override;
  void OnOwnerChanged(const std::string& groupId, const std::string& newOwner) override;
  void OnGroupDismissed(const std::string& groupId) override;

 private:
  GroupMirror& mirror_;
};

}  // namespace host::local

#include "host/local/engine_group_link.h"

#include "imsdk/engine_control.h"
#include "platform/strings.h"

namespace host::local {
namespace {

WString Wide(const std::string& text) {
  return platform::Utf8ToUtf16(text);
}

std::vector<WString> Wide(const std::vector<std::string>& texts) {
  std::vector<WString> wide;
  wide.reserve(texts.size());
  for (const std::string& text : texts) wide.push_back(Wide(text));
  return wide;
}

}  // namespace

EngineGroupLink::EngineGroupLink(GroupMirror& mirror) : mirror_(mirror) {
  imsdk::EngineControl::Instance().SetGroupObserver(this);
}

EngineGroupLink::~EngineGroupLink() {
  imsdk::EngineControl::Instance().SetGroupObserver(nullptr);
}

void EngineGroupLink::OnGroupCreated(const std::string& groupId, const std::string& name,
                                     const std::string& owner,
                                     const std::vector<std::string>& members) {
  mirror_.OnGroupCreated(Wide(groupId), Wide(name), Wide(owner), Wide(members));
}

void EngineGroupLink::OnMembersJoined(const std::string& groupId,
                                      const std::vector<std::string>& members) {
  mirror_.OnMembersJoined(Wide(groupId), Wide(members));
}

void EngineGroupLink::OnMembersLeft(const std::string& groupId,
                                    const std::vector<std::string>& members) {
  mirror_.OnMembersLeft(Wide(groupId), Wide(members));
}

void EngineGroupLink::OnGroupRenamed(const std::string& groupId, const std::string& name) {
  mirror_.OnGroupRenamed(Wide(groupId), Wide(name));
}

void EngineGroupLink::OnOwnerChanged(const std::string& groupId, const std::string& newOwner) {
  mirror_.OnOwnerChanged(Wide(groupId), Wide(newOwner));
}

void EngineGroupLink::OnGroupDismissed(const std::string& groupId) {
  mirror_.OnGroupDismissed(Wide(groupId));
}

}  // namespace host::local

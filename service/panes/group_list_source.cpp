// The group list's source over CChatTools.
#include "service/panes/group_list_source.h"

#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/panes/face_fetcher.h"

namespace service {
namespace {

class ChatToolsGroupList final : public GroupListSource {
 public:
  explicit ChatToolsGroupList(CChatTools& tools) : tools_(tools), faces_(tools) {}

  std::vector<GroupInfo> Groups() const override { return tools_.Groups(); }
  WString FaceImage(const WString& groupId) override {
    std::optional<GroupInfo> found = tools_.FindGroup(groupId);
    return faces_.CachedOrQueued(found ? found->face_url : WString(), kGroupDefaultImage, groupId);
  }
  bool IsOwnedByUser(const GroupInfo& group) const override {
    return !group.owner.empty() && group.owner == tools_.UserId();
  }

 private:
  CChatTools& tools_;
  FaceFetcher faces_;
};

}  // namespace

std::unique_ptr<GroupListSource> MakeGroupListSource(CChatTools& tools) {
  return std::make_unique<ChatToolsGroupList>(tools);
}

}  // namespace service

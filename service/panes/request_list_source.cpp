// The friend request list's source over CChatTools.
#include "service/panes/request_list_source.h"

#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/panes/face_fetcher.h"

namespace service {
namespace {

class ChatToolsRequestList final : public RequestListSource {
 public:
  explicit ChatToolsRequestList(CChatTools& tools) : tools_(tools), faces_(tools) {}

  std::vector<PendingFriendRequest> Requests() const override { return tools_.PendingRequests(); }
  WString RequesterName(const WString& id) const override {
    WString name = tools_.PersonName(id);
    if (name != id) return name;
    // No profile yet: the name the request came with.
    for (const PendingFriendRequest& request : tools_.PendingRequests()) {
      if (request.pendency.identifier == id && !request.pendency.nick_name.empty()) {
        return request.pendency.nick_name;
      }
    }
    return name;
  }
  WString FaceImage(const WString& id) override {
    std::optional<UserProfile> profile = tools_.FindProfile(id);
    return faces_.CachedOrQueued(profile ? profile->face_url : WString(), kPersonDefaultImage, id);
  }
  bool Accept(const WString& id) override {
    for (PendingFriendRequest& request : tools_.PendingRequests()) {
      if (request.pendency.identifier != id) continue;
      tools_.AgreeToAddFriends(&request);
      return request.handled;
    }
    return false;
  }
  void ReportRead(uint64_t seconds) override { tools_.ReportPendencyReaded(seconds); }
  void Refresh() override { tools_.RequestPendencyList(kPendencyListRefresh); }

 private:
  CChatTools& tools_;
  FaceFetcher faces_;
};

}  // namespace

std::unique_ptr<RequestListSource> MakeRequestListSource(CChatTools& tools) {
  return std::make_unique<ChatToolsRequestList>(tools);
}

}  // namespace service

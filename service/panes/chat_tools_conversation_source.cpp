// The conversation list's source over CChatTools.
#include "host/host_access.h"
#include "service/chat_tools.h"
#include "service/conversation_faces.h"
#include "service/current_conversation.h"
#include "service/panes/conversation_list_source.h"
#include "service/panes/face_fetcher.h"

namespace service {
namespace {

class ChatToolsConversationSource : public ConversationListSource {
 public:
  explicit ChatToolsConversationSource(CChatTools& tools) : tools_(tools), faces_(tools) {}

  bool IsSignedIn() const override { return !tools_.UserId().empty(); }

  bool HasConversations() const override {
    return tools_.RecentCount() != 0 || tools_.ConversationCount() != 0;
  }

  std::vector<RecentConversationKey> RecentKeys() const override {
    return tools_.RecentConversationKeys();
  }

  std::optional<ConversationInfo_Stru> FindConversation(const WString& convId) const override {
    // One record copied, not the whole list: per-item updates come often.
    if (std::optional<RecentConversation> recent = tools_.FindRecentConv(convId)) {
      return WithLastMessage(std::move(recent->info));
    }
    return tools_.FindConversation(convId);
  }

  Picture ConversationPicture(uint32_t convType, const WString& convId) override {
    ConversationFace face = LookUpConversationFace(tools_, convType, convId);
    return Picture{faces_.CachedOrQueued(face.faceUrl, face.defaultImage, convId), face.name};
  }

  WString ConversationName(uint32_t convType, const WString& convId) override {
    WString name = tools_.GetConvNickName(convType, convId);
    // A stranger has no friend name: the same name the list shows.
    return name.empty() ? LookUpConversationFace(tools_, convType, convId).name : name;
  }

  bool IsUnread(const WString& convId) const override { return tools_.IsUnread(convId); }
  void SetRead(const WString& convId) override { tools_.SetUnread(convId, false); }

  void ReadGroup(const WString& groupId, uint64_t count) override {
    tools_.GetMsgList(groupId, 2, static_cast<uint32_t>(count));
    tools_.ReportReaded(groupId, 2);
  }

  void MoveToFront(const WString& convId, uint32_t convType, uint64_t now) override {
    RecentConversation record;
    if (std::optional<RecentConversation> old = tools_.TakeRecentConv(convId)) {
      record = std::move(*old);
    }
    record.info.conv_id = convId;
    record.info.conv_type = convType;
    record.info.active_time = now;
    record.info.unread_num = 0;
    record.opened = 1;
    record.listed = 1;
    tools_.InsertRecentConvFront(std::move(record));
  }

  void DeleteConversation(const WString& convId) override { tools_.DeleteConv(convId); }
  void RefreshConversations() override { tools_.RequestConvList(); }
  bool IsNetworkDown() const override { return tools_.NetworkStatus() == kNetworkDownStatus; }

  std::optional<WString> SharedSessionConversation() const override {
    HostAppService* app = host::AcquireAppService("CIMWnd::HideChatWindow error ");
    if (app == nullptr || !app->IsInSharedSession()) return std::nullopt;
    const char16_t* key = app->GetSessionKey();
    return WString(key != nullptr ? key : u"");
  }

 private:
  // The SDK's "disconnected" status (kTIMDisconnected).
  static constexpr uint32_t kNetworkDownStatus = 1;

  // The recent record's last message, or the conversation set's when the
  // record has none (a record added by a new message carries only its id).
  ConversationInfo_Stru WithLastMessage(ConversationInfo_Stru info) const {
    if (info.has_last_msg) return info;
    if (std::optional<ConversationInfo_Stru> known = tools_.FindConversation(info.conv_id)) {
      info.has_last_msg = known->has_last_msg;
      info.last_msg = known->last_msg;
      if (info.active_time == 0) info.active_time = known->active_time;
    }
    return info;
  }

  CChatTools& tools_;
  FaceFetcher faces_;
};

}  // namespace

std::unique_ptr<ConversationListSource> MakeConversationListSource(CChatTools& tools) {
  return std::make_unique<ChatToolsConversationSource>(tools);
}

}  // namespace service

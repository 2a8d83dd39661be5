// The message view's source over CChatTools, the store and the host.
#include "platform/data_folders.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/panes/message_view_source.h"
#include "store/chat_db.h"

namespace service {
namespace {

class ChatToolsMessageSource : public MessageViewSource {
 public:
  explicit ChatToolsMessageSource(CChatTools& tools) : tools_(tools) {}

  WString CurrentConversation() const override { return CurrentConvId(); }
  uint32_t CurrentConversationType() const override { return CurrentConvType(); }

  WString SelfId() const override { return tools_.UserId(); }

  WString SelfName() const override {
    const WString self = tools_.UserId();
    std::optional<UserProfile> own = tools_.FindProfile(self);
    return own && !own->nick_name.empty() ? own->nick_name : self;
  }

  std::optional<WString> FriendName(const WString& id) const override {
    std::optional<FriendsList_Stru> found = tools_.FindFriend(id);
    if (!found) return std::nullopt;
    return CChatTools::FriendDisplayName(*found);
  }

  std::vector<MessageStru> TakeNewMessages(const WString& convId) override {
    return tools_.TakeNewMessages(convId);
  }

  std::vector<MessageStru> StoredMessages(const WString& convId, int limit) override {
    std::vector<MessageStru> messages;
    CChatDb& db = CChatDb::Instance();
    if (db.IsOpen()) db.QueryCurrentConvMsg(convId, tools_.UserId(), limit, messages);
    return messages;
  }

  void ReportRead(const WString& convId, uint32_t convType) override {
    tools_.ReportReaded(convId, convType);
  }

  void Download(const std::string& downloadParam, const WString& path,
                uint64_t requestKey) override {
    tools_.DownloadMessageElem(platform::Utf8ToUtf16(downloadParam), path, requestKey);
  }

  std::optional<DownloadState> Transfer(uint64_t requestKey) const override {
    return tools_.GetDownloadState(requestKey);
  }

  WString DownloadFolder() const override {
    return platform::DataFolders::Instance().GetDownloadPath();
  }

  std::optional<MessageStru> SentMessage(uint32_t localId) const override {
    return tools_.FindPendingSend(localId);
  }

  std::optional<UploadProgress> Upload(uint32_t localId) const override {
    return tools_.FindUpload(localId);
  }

  drawings::DrawingOpenStep OpenDrawing(MessageStru& message, host::UserPrompt& prompt) override {
    return drawings::OpenDrawingMessage(message, DownloadFolder(), prompt);
  }

 private:
  CChatTools& tools_;
};

}  // namespace

std::unique_ptr<MessageViewSource> MakeMessageViewSource(CChatTools& tools) {
  return std::make_unique<ChatToolsMessageSource>(tools);
}

}  // namespace service

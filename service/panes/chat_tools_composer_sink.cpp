#include "service/panes/composer_sink.h"

#include <filesystem>
#include <system_error>

#include "platform/data_folders.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"

namespace service {
namespace {

// The open conversation, or false (traced) when none is open.
bool OpenConversation(WString& convId, uint32_t& convType) {
  convId = CurrentConvId();
  convType = CurrentConvType();
  if (convId == kNoConversation || convId.empty()) {
    platform::Trace("ComposerSink: no open conversation, nothing sent");
    return false;
  }
  return true;
}

class ChatToolsComposerSink final : public ComposerSink {
 public:
  explicit ChatToolsComposerSink(CChatTools& tools) : tools_(tools) {}
  bool SendText(const WString& text) override;
  bool SendImage(const WString& path) override;
  bool SendFile(const WString& path) override;
  WString PastedPictureFolder() const override;

 private:
  CChatTools& tools_;
};

bool ChatToolsComposerSink::SendText(const WString& text) {
  WString convId;
  uint32_t convType = 0;
  return OpenConversation(convId, convType) && tools_.OnSendTextElem(convId, convType, text);
}

bool ChatToolsComposerSink::SendImage(const WString& path) {
  WString convId;
  uint32_t convType = 0;
  return OpenConversation(convId, convType) && tools_.OnSendImageElem(convId, convType, path);
}

bool ChatToolsComposerSink::SendFile(const WString& path) {
  WString convId;
  uint32_t convType = 0;
  if (!OpenConversation(convId, convType)) return false;
  std::filesystem::path local(platform::Utf16ToUtf8(path));
  std::error_code ec;
  auto size = std::filesystem::file_size(local, ec);
  if (ec) {
    platform::Trace("ComposerSink: cannot read the size of %s", local.c_str());
    return false;
  }
  return tools_.OnSendFileElem(convId, convType, path, platform::W(local.filename().string()),
                               static_cast<int64_t>(size));
}

WString ChatToolsComposerSink::PastedPictureFolder() const {
  // Beside the user's avatar cache: <user>/cache/face -> <user>/cache/send.
  std::filesystem::path face(
      platform::Utf16ToUtf8(platform::DataFolders::Instance().GetFacePath()));
  while (!face.empty() && !face.has_filename()) face = face.parent_path();
  if (face.empty()) return {};  // not signed in: the caller picks a temporary folder
  return platform::W((face.parent_path() / "send").string());
}

}  // namespace

std::unique_ptr<ComposerSink> MakeComposerSink(CChatTools& tools) {
  return std::make_unique<ChatToolsComposerSink>(tools);
}

}  // namespace service

#pragma once
// The local host's application side: the user's own shared session (which
// tests set), the drawings it opens, and a record of what the module told it.

#include "host/local/local_host_state.h"

namespace host::local {

class LocalAppService final : public HostAppService {
 public:
  explicit LocalAppService(LocalHostState& state) : state_(state) {}

  bool EnterSharedDrawing(platform::WindowHandle owner, const char16_t* sessionText,
                          int32_t groupId, int32_t drawingId, const char16_t* drawingRef) override;
  void EndSharedSession() override;
  bool updateChatDrawingInfo(int32_t instruction) override;
  bool IsInSharedSession() override;
  const char16_t* GetSessionKey() override;
  int32_t GetSessionGroupId() override;
  int32_t GetSessionDrawingId() override;
  const char16_t* GetSessionText() override;
  void ApplyDrawingSync(const char16_t* sender, const char16_t* content, int32_t length) override;
  void SetDrawingMsgSender(DrawingMsgSender sender) override;
  bool sendDrawingSyncMsg(const char16_t* payload) override;
  bool OpenDrawingFile(const char16_t* localPath) override;
  void NotifyNewMessage() override;
  void SetHostNotifyCallback(HostNotifyCallback callback) override;
  void RecordFeatureUse(const char16_t* feature) override;
  void GetOpenDrawings(std::vector<WString>& paths) override;

 private:
  LocalHostState& state_;
};

}  // namespace host::local

#include "host/local/local_app_service.h"

#include <filesystem>
#include <system_error>

namespace host::local {
namespace {

using Lock = std::lock_guard<std::mutex>;

}  // namespace

bool LocalAppService::EnterSharedDrawing(platform::WindowHandle, const char16_t* sessionText,
                                         int32_t groupId, int32_t drawingId,
                                         const char16_t* drawingRef) {
  Lock lock(state_.mutex);
  if (!state_.Record("EnterSharedDrawing", Utf8(sessionText) + "," + std::to_string(groupId) + "," +
                                               std::to_string(drawingId) + "," +
                                               Utf8(drawingRef)) ||
      !state_.SignedIn() || sessionText == nullptr || drawingRef == nullptr) {
    return false;
  }
  SharedSessionInfo session;
  session.groupId = groupId;
  session.drawingId = drawingId;
  session.sessionText = sessionText;
  session.drawingRef = drawingRef;
  if (const LocalGroup* group = state_.FindGroup(groupId)) session.sessionKey = group->imGroupId;
  state_.session = std::move(session);
  state_.inSession = true;
  return true;
}

void LocalAppService::EndSharedSession() {
  Lock lock(state_.mutex);
  if (!state_.Record("EndSharedSession")) return;
  state_.inSession = false;
  state_.session = SharedSessionInfo{};
}

bool LocalAppService::updateChatDrawingInfo(int32_t instruction) {
  Lock lock(state_.mutex);
  if (!state_.Record("updateChatDrawingInfo", std::to_string(instruction)) || !state_.inSession) {
    return false;
  }
  state_.drawingInfoUpdates.push_back(instruction);
  return true;
}

bool LocalAppService::IsInSharedSession() {
  Lock lock(state_.mutex);
  return state_.Record("IsInSharedSession") && state_.inSession;
}

// The pointers stay valid until the session changes, as with any host.
const char16_t* LocalAppService::GetSessionKey() {
  Lock lock(state_.mutex);
  state_.Record("GetSessionKey");
  return state_.session.sessionKey.c_str();
}

int32_t LocalAppService::GetSessionGroupId() {
  Lock lock(state_.mutex);
  state_.Record("GetSessionGroupId");
  return state_.session.groupId;
}

int32_t LocalAppService::GetSessionDrawingId() {
  Lock lock(state_.mutex);
  state_.Record("GetSessionDrawingId");
  return state_.session.drawingId;
}

const char16_t* LocalAppService::GetSessionText() {
  Lock lock(state_.mutex);
  state_.Record("GetSessionText");
  return state_.session.sessionText.c_str();
}

void LocalAppService::ApplyDrawingSync(const char16_t* sender, const char16_t* content,
                                       int32_t length) {
  Lock lock(state_.mutex);
  if (!state_.Record("ApplyDrawingSync", Utf8(sender) + "," + std::to_string(length)) ||
      sender == nullptr || content == nullptr || length < 0) {
    return;
  }
  state_.appliedSyncs.emplace_back(sender, WString(content, static_cast<size_t>(length)));
}

void LocalAppService::SetDrawingMsgSender(DrawingMsgSender sender) {
  Lock lock(state_.mutex);
  state_.Record("SetDrawingMsgSender");
  state_.drawingMsgSender = std::move(sender);
}

bool LocalAppService::sendDrawingSyncMsg(const char16_t* payload) {
  Lock lock(state_.mutex);
  if (!state_.Record("sendDrawingSyncMsg") || !state_.inSession || payload == nullptr) return false;
  state_.sentSyncs.emplace_back(payload);
  return true;
}

bool LocalAppService::OpenDrawingFile(const char16_t* localPath) {
  Lock lock(state_.mutex);
  if (!state_.Record("OpenDrawingFile", Utf8(localPath)) || localPath == nullptr) return false;
  std::error_code error;
  if (!std::filesystem::is_regular_file(platform::Utf16ToUtf8(localPath), error)) return false;
  state_.openedFiles.emplace_back(localPath);
  return true;
}

void LocalAppService::NotifyNewMessage() {
  Lock lock(state_.mutex);
  if (state_.Record("NotifyNewMessage")) ++state_.newMessageNotices;
}

void LocalAppService::SetHostNotifyCallback(HostNotifyCallback callback) {
  Lock lock(state_.mutex);
  state_.Record("SetHostNotifyCallback");
  state_.notifyCallback = std::move(callback);
}

void LocalAppService::RecordFeatureUse(const char16_t* feature) {
  Lock lock(state_.mutex);
  if (state_.Record("RecordFeatureUse", Utf8(feature)) && feature != nullptr) {
    state_.featureUses.emplace_back(feature);
  }
}

void LocalAppService::GetOpenDrawings(std::vector<WString>& paths) {
  Lock lock(state_.mutex);
  paths.clear();
  if (state_.Record("GetOpenDrawings")) paths = state_.openDrawings;
}

}  // namespace host::local

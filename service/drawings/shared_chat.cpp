#include "service/drawings/shared_chat.h"

#include <optional>
#include <string>

#include "host/account_id.h"
#include "host/feature_use.h"
#include "host/host_access.h"
#include "host/host_texts.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/drawings/drawing_texts.h"

namespace service::drawings {
namespace {

constexpr const char* kTag = "CIMWnd::SharedChat  error ";
constexpr uint32_t kGroupConversation = 2;
constexpr int32_t kCheckMode = 1;

// The host's id of the conversation's other side: the peer's account, or
// the group's cloud id.
std::optional<int32_t> HostIdOf(CChatTools& tools, const WString& convId, uint32_t convType) {
  if (convType != kGroupConversation) return host::AccountIdOfImUser(convId);
  std::optional<GroupInfo> group = tools.FindGroup(convId);
  if (!group || group->cloud_group_id < 0) return std::nullopt;
  return group->cloud_group_id;
}

}  // namespace

WString SharedChat::NewSessionText(const WString& convId, int32_t drawingId) {
  return convId + u"#" + platform::Utf8ToUtf16(std::to_string(drawingId));
}

void SharedChat::Tell(const char* text) {
  prompt_.ShowMessage(platform::W(host::text::kErrorTitle), platform::W(text));
}

SharedChatStep SharedChat::Start(const WString& convId, uint32_t convType,
                                 platform::WindowHandle owner) {
  host::HostServices host = host::AcquireBothServices(kTag, host::Gate::kSignedIn);
  if (!host) return SharedChatStep::kUnavailable;
  host::RecordFeatureUse(host::FeatureUse::kShareChat);

  const std::optional<int32_t> self = host::AccountIdOfImUser(tools_.UserId());
  const std::optional<int32_t> other = HostIdOf(tools_, convId, convType);
  SharedSessionInfo own, theirs;
  int32_t ownIn = 0, theirsIn = 0;
  if (!self || !other || !host.cloud->QuerySharedSessionState(*self, own, ownIn) ||
      !host.cloud->QuerySharedSessionState(*other, theirs, theirsIn)) {
    platform::Trace("%s", host::text::kSharedStateQueryFailed);
    Tell(host::text::kSharedStateQueryFailed);
    return SharedChatStep::kQueryFailed;
  }
  if (ownIn != 0) {
    if (own.sessionKey == convId)
      return SharedChatStep::kEntered;  // in it already: not joined twice
    Tell(text::kInOtherSession);
    return SharedChatStep::kOtherSession;
  }
  if (theirsIn != 0) {
    return Enter(convId, {theirs.groupId, theirs.drawingId, theirs.drawingRef, theirs.sessionText},
                 owner);
  }
  if (convType == kGroupConversation) return SharedChatStep::kChooseDrawing;
  prompt_.ShowMessage(platform::W(host::text::kNoticeTitle), platform::W(text::kNoPeerSession));
  return SharedChatStep::kNoPeerSession;
}

SharedChatStep SharedChat::Enter(const WString& convId, const SharedDrawing& drawing,
                                 platform::WindowHandle owner) {
  host::HostServices host = host::AcquireBothServices(kTag, host::Gate::kSignedIn);
  if (!host) return SharedChatStep::kUnavailable;
  const std::optional<int32_t> self = host::AccountIdOfImUser(tools_.UserId());
  if (!self) return SharedChatStep::kUnavailable;
  const WString sessionText =
      drawing.sessionText.empty() ? NewSessionText(convId, drawing.drawingId) : drawing.sessionText;

  SharedSessionInfo room;
  if (!host.cloud->CheckSharedSession(drawing.groupId, drawing.drawingId, *self, kCheckMode,
                                      &room)) {
    if (room.maxParticipants > 0 && room.participants >= room.maxParticipants) {
      const WString limit = platform::Utf8ToUtf16(std::to_string(room.maxParticipants));
      prompt_.ShowMessage(platform::W(host::text::kErrorTitle),
                          host::text::Format(host::text::kSharedChatFull, limit));
      return SharedChatStep::kFull;
    }
    Tell(text::kEnterSharedDrawingFailedText);
    return SharedChatStep::kEnterFailed;
  }
  SharedSessionInfo joined;
  if (!host.cloud->JoinSharedSession(drawing.groupId, drawing.drawingId, sessionText.c_str(),
                                     joined)) {
    Tell(text::kEnterSharedDrawingFailedText);
    return SharedChatStep::kEnterFailed;
  }
  const WString ref = drawing.drawingRef.empty() ? joined.drawingRef : drawing.drawingRef;
  if (!host.app->EnterSharedDrawing(owner, sessionText.c_str(), drawing.groupId, drawing.drawingId,
                                    ref.c_str())) {
    // Not left half in: the session is given back.
    host.cloud->LeaveSharedSession(drawing.groupId, drawing.drawingId, sessionText.c_str());
    prompt_.ShowMessage(platform::W(host::text::kEnterSharedDrawingFailed),
                        platform::W(text::kEnterSharedDrawingFailedText));
    return SharedChatStep::kEnterFailed;
  }
  return SharedChatStep::kEntered;
}

}  // namespace service::drawings

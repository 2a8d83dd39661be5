#include "ui/main/drawing_routes.h"

#include "host/feature_use.h"
#include "host/user_prompt.h"
#include "platform/trace.h"
#include "service/chat_tools.h"
#include "service/current_conversation.h"
#include "service/drawings/shared_chat.h"
#include "service/drawings/space_drawings.h"
#include "ui/dialogs/chat_message_box.h"
#include "ui/dialogs/drawing_selection.h"
#include "ui/dialogs/share_dwg.h"

namespace ui::main {
namespace {

using service::drawings::SharedChat;
using service::drawings::SharedChatStep;

constexpr uint32_t kGroupConversation = 2;
// Shared-chat instructions that announce a member (data.instruct of msgType 2).
constexpr uint32_t kMemberEntered = 2;
constexpr uint32_t kMemberLeft = 4;

// The controller's boxes, shown on the window thread over the chat window.
class BoxPrompt final : public host::UserPrompt {
 public:
  explicit BoxPrompt(WindowImplBase& owner) : owner_(owner) {}
  void ShowMessage(const WString& title, const WString& text) override {
    CChatMessageBox(title, text, &owner_, CChatMessageBox::kNotice);
  }
  bool Confirm(const WString& title, const WString& text) override {
    CChatMessageBox(title, text, &owner_, CChatMessageBox::kQuestion);
    return CChatMessageBox::Confirmed();
  }

 private:
  WindowImplBase& owner_;
};

// The open conversation, when there is one.
bool OpenConversation(WString& convId, uint32_t& convType) {
  convId = service::CurrentConvId();
  convType = service::CurrentConvType();
  if (convId == service::kNoConversation || convId.empty()) {
    platform::Trace("drawing controller: no conversation open");
    return false;
  }
  return true;
}

}  // namespace

DrawingDialogRoutes::DrawingDialogRoutes(WindowImplBase& window, CChatTools& tools,
                                         ChatNavigator& navigator,
                                         std::function<void()> enterCompact)
    : ChatDialogRoutes(window, tools, navigator),
      window_(window),
      tools_(tools),
      enterCompact_(std::move(enterCompact)),
      upload_(tools) {}

void DrawingDialogRoutes::SendDrawing() {
  WString convId;
  uint32_t convType = 0;
  if (!OpenConversation(convId, convType)) return;
  service::drawings::ConversationDrawings source(tools_, upload_, convId, convType);
  CDrawingSelection dialog(source);
  dialog.RunModal(&window_);
}

void DrawingDialogRoutes::ManageSharedDrawings() {
  WString convId;
  uint32_t convType = 0;
  if (!OpenConversation(convId, convType)) return;
  if (convType != kGroupConversation) {
    // A one-to-one chat has no cloud space of its own.
    BoxPrompt(window_).ShowMessage(u"提示", u"只有群聊有群空间图纸。");
    return;
  }
  host::RecordFeatureUse(host::FeatureUse::kCloudManage);
  OpenShareTree(convId, false);
}

void DrawingDialogRoutes::StartSharedChat() {
  WString convId;
  uint32_t convType = 0;
  if (!OpenConversation(convId, convType)) return;
  BoxPrompt prompt(window_);
  switch (SharedChat(tools_, prompt).Start(convId, convType, window_.GetHWND())) {
    case SharedChatStep::kEntered:
      Entered();
      return;
    case SharedChatStep::kChooseDrawing:
      OpenShareTree(convId, true);
      return;
    default:
      return;  // told, or traced
  }
}

void DrawingDialogRoutes::OpenShareTree(const WString& convId, bool forSharedChat) {
  service::drawings::ConversationDrawings source(tools_, upload_, convId, kGroupConversation);
  ShareDwg dialog(source, forSharedChat);
  if (dialog.RunModal(&window_) != ShareDwg::kSharedChat || !dialog.Chosen()) return;
  const ShareTreeDrawing& chosen = *dialog.Chosen();
  std::optional<GroupInfo> group = tools_.FindGroup(convId);
  if (!group) return;
  if (!forSharedChat) host::RecordFeatureUse(host::FeatureUse::kShareChat);
  BoxPrompt prompt(window_);
  const service::drawings::SharedDrawing drawing{group->cloud_group_id, chosen.drawingId,
                                                 chosen.drawingRef, WString()};
  if (SharedChat(tools_, prompt).Enter(convId, drawing, window_.GetHWND()) ==
      SharedChatStep::kEntered) {
    Entered();
  }
}

void DrawingDialogRoutes::Entered() {
  if (enterCompact_) enterCompact_();
}

void DrawingDialogRoutes::OnSharedChatNotice(const MessageStru& message) {
  if (!service::IsCurrentConversation(message.conv_id)) return;
  for (const ElemStru& elem : message.elems) {
    const DrawingMsgStru& notice = elem.drawing;
    if (notice.msgType != kDrawingMsgSharedChat) continue;
    const WString who = notice.fromUserName.empty() ? notice.fromUserId : notice.fromUserName;
    if (notice.instruct == kMemberEntered || notice.instruct == kMemberLeft) {
      // The shared-chat button tells who came or went last.
      window_.FindControl("IMWnd_SharedChatBtn")
          .SetToolTip(
              who + (notice.instruct == kMemberEntered ? u" 进入了共享聊图" : u" 退出了共享聊图"));
    }
  }
}

}  // namespace ui::main

#pragma once
// The drawing upload and shared-chat controller of the chat window:
// IMWnd_UploadDrawBtn (CDrawingSelection), ChatDrawBtn (ShareDwg over the
// group's cloud space), IMWnd_SharedChatBtn (the shared chat on a drawing,
// entering the compact layout) and the shared-chat notices (3208).

#include <functional>

#include "service/drawings/drawing_upload.h"
#include "ui/main/chat_dialog_routes.h"

namespace ui::main {

class DrawingDialogRoutes final : public ChatDialogRoutes {
 public:
  // `enterCompact` turns the chat window to its shared-chat layout.
  DrawingDialogRoutes(WindowImplBase& window, CChatTools& tools, ChatNavigator& navigator,
                      std::function<void()> enterCompact);

  void SendDrawing() override;
  void ManageSharedDrawings() override;
  void StartSharedChat() override;
  void OnSharedChatNotice(const MessageStru& message) override;

 private:
  // Opens ShareDwg; for a shared chat, enters the session on the chosen drawing.
  void OpenShareTree(const WString& convId, bool forSharedChat);
  void Entered();

  WindowImplBase& window_;
  CChatTools& tools_;
  std::function<void()> enterCompact_;
  service::drawings::DrawingUpload upload_;
};

}  // namespace ui::main

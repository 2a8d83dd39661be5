#pragma once
// The composer pane: the rich edit "ChatWindow_SendrichEdit" at the foot of
// the chat page, with its emoticon picker, the picture and file buttons,
// paste and drop. What may be sent is decided by ui/rules; sending itself is
// the service's (service::ComposerSink). Window thread only.

#include <functional>
#include <memory>
#include <vector>

#include "platform/strings.h"
#include "ui/kit/control.h"
#include "ui/kit/rich_edit.h"
#include "ui/main/pane_routes.h"
#include "ui/rules/send_limits.h"

namespace service {
class ComposerSink;
}
namespace ui {
class WindowImplBase;
}
class CFaceSelectDialog;

class Composer final : public ui::main::ComposerRoutes {
 public:
  // What the composer asks of the user. The defaults are the open-file
  // dialog and the module's message box; tests put their own.
  struct Prompts {
    std::function<WString(const ui::rules::FileFilter&)> chooseFile;
    std::function<void(const ui::rules::Refusal&)> notice;
  };

  // `edit` is the window's ChatWindow_SendrichEdit (may be absent).
  Composer(ui::WindowImplBase& window, const ui::Control& edit, service::ComposerSink& sink);
  Composer(ui::WindowImplBase& window, const ui::Control& edit, service::ComposerSink& sink,
           Prompts prompts);
  ~Composer() override;
  Composer(const Composer&) = delete;
  Composer& operator=(const Composer&) = delete;

  // Enter in the composer and the send button: the composed text and
  // pictures go to the open conversation, unless something is refused.
  void Send() override;
  // The picture and file buttons: choose, check, send.
  void SendPictures() override;
  void SendFiles() override;
  // The emoticon button: the picker opens above it.
  void OpenEmoticons() override;
  // 3153: the picker's choice goes into the composer.
  ui::LRESULT InsertEmoticon(ui::WPARAM wParam, ui::LPARAM lParam) override;
  // Files dropped on the window: pictures as pictures, anything else as a
  // file, each through its button's checks.
  void DropFiles(const std::vector<WString>& paths) override;
  // Ctrl+V and the menu's paste: only text and pictures come in.
  void PasteKey() override;
  void Paste() override;
  void Cut() override;
  void Clear() override;  // 3205 and the window's reset
  void Focus();

  const ui::Control& Edit() const { return composer_; }
  CFaceSelectDialog* Picker() const { return picker_.get(); }

 private:
  void SendAttachment(ui::rules::AttachmentKind kind, const WString& path);
  void Upload(ui::rules::AttachmentKind kind);

  ui::WindowImplBase& window_;
  service::ComposerSink& sink_;
  Prompts prompts_;
  ui::RichEdit edit_;
  std::unique_ptr<CFaceSelectDialog> picker_;
};

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
#include "ui/rules/send_limits.h"

namespace service {
class ComposerSink;
}
namespace ui {
class WindowImplBase;
}
class CFaceSelectDialog;

class Composer {
 public:
  // What the composer asks of the user. The defaults are the open-file
  // dialog and the module's message box; tests put their own.
  struct Prompts {
    std::function<WString(const ui::rules::FileFilter&)> chooseFile;
    std::function<void(const ui::rules::Refusal&)> notice;
  };

  Composer(ui::WindowImplBase& window, service::ComposerSink& sink);
  Composer(ui::WindowImplBase& window, service::ComposerSink& sink, Prompts prompts);
  ~Composer();
  Composer(const Composer&) = delete;
  Composer& operator=(const Composer&) = delete;

  // Finds the rich edit in the window's skin (once the skin is loaded).
  void Attach();
  const ui::Control& Edit() const { return edit_.control(); }

  // Enter in the composer and the send button: the composed text and
  // pictures go to the open conversation, unless something is refused.
  void SendComposed();
  // The emoticon button: the picker opens above `button`.
  void OpenFacePicker(const ui::Control& button);
  // 3153: the picker's choice goes into the composer.
  void InsertChosenFace();
  // The picture and file buttons: choose, check, send; the composer then
  // has the focus.
  void UploadImage();
  void UploadFiles();
  // Files dropped on the window: pictures as pictures, anything else as a
  // file, each through its button's checks.
  void SendDroppedFiles(const std::vector<WString>& paths);

  // Ctrl+V: pasted through the filter when the composer has the focus;
  // true when the key was taken.
  bool PasteKey();
  void Cut();                                  // 3156
  void NoteRightClick(ui::Point windowPoint);  // a right-click anywhere in the window
  void PasteAtRightClick();                    // 3158: only when that click was on the composer
  void Clear();                                // 3205 and the window's reset
  void Focus();

  CFaceSelectDialog* Picker() const { return picker_.get(); }

 private:
  void SendAttachment(ui::rules::AttachmentKind kind, const WString& path);
  void Upload(ui::rules::AttachmentKind kind);

  ui::WindowImplBase& window_;
  service::ComposerSink& sink_;
  Prompts prompts_;
  ui::RichEdit edit_;
  std::unique_ptr<CFaceSelectDialog> picker_;
  ui::Point rightClick_{-1, -1};
};

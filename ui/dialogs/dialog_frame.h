#pragma once
// The frame every dialog is built on. A dialog names its row of the dialog
// table (ui/dialogs/dialog_rows.h): class name, skin file, window name, what
// happens to the object when its window is gone, and what losing the focus
// does. The frame creates the window as a popup tool window owned by the
// window that opens it, places it and runs it modally or shows it.
//
// A dialog then only writes its Notify (looking its controls up on
// "windowinit") and, where it needs one, its own HandleMessage.
//
//   class CreateGroup : public ui::DialogFrame {
//    public:
//     CreateGroup() : DialogFrame(ui::dialogs::kCreateGroup) {}
//    protected:
//     void Notify(ui::TNotifyUI& msg) override;
//   };
//   CreateGroup dialog;
//   dialog.RunModal(&chatWindow);
//
// Self-deleting dialogs are made with `new` and opened with ShowDialog or
// ShowAt; the object deletes itself when its window goes, also when the
// opening failed (those calls then return false and the pointer is gone).

#include <string>

#include "host/host_records.h"
#include "ui/kit/window_impl_base.h"

namespace ui {

// What becomes of the object once its window is gone.
enum class FinalMessage {
  kKeep,        // the owner of the object destroys it (stack objects, members)
  kSelfDelete,  // made with `new` and never waited for: it deletes itself
  // The drawing selection dialogs: the host takes back the share tree it
  // filled (ShareTree()) first; the object is kept.
  kReleaseShareTree,
};

// What losing the focus (a click elsewhere) does.
enum class KillFocus {
  kBase,           // the kit's default: nothing
  kIgnore,         // handled, nothing happens
  kClose,          // the dialog closes itself with code 1; handled
  kCloseThenBase,  // the dialog closes itself, and the kit's default runs too
};

// One row of the dialog table.
struct DialogRow {
  const char* className;
  const char* skinFile;
  const char16_t* windowName;  // empty: a window without name
  FinalMessage finalMessage;
  KillFocus killFocus;
};

class DialogFrame : public WindowImplBase {
 public:
  explicit DialogFrame(const DialogRow& row) : row_(row) {}

  const DialogRow& Row() const { return row_; }

  // Builds the window (a popup tool window owned by `owner`, which may be
  // null) at 0,0 in the skin's size. False when the skin cannot be loaded
  // (traced); the object then has no window.
  bool CreateDialog(WindowImplBase* owner);
  // Creates, places (PlaceWindow) and runs modally. Returns the code the
  // dialog was closed with, -1 when it could not be created.
  int RunModal(WindowImplBase* owner);
  // The same, owned by a window of the host application.
  int RunModal(HostWindow owner);
  // Creates, places (PlaceWindow) and shows with activation.
  bool ShowDialog(WindowImplBase* owner);
  // Creates, puts the top-left corner at `screenPoint` keeping the size, and
  // shows with activation (menus and pickers opened at a button).
  bool ShowAt(WindowImplBase* owner, Point screenPoint);

 protected:
  std::string GetWindowClassName() const final { return row_.className; }
  std::string GetSkinFile() const final { return row_.skinFile; }
  LRESULT OnKillFocus(unsigned uMsg, WPARAM wParam, LPARAM lParam, bool& bHandled) override;
  void OnFinalMessage() override;
  // Where a new dialog goes: centred on its owner (or the screen).
  virtual void PlaceWindow() { CenterWindow(); }
  // The selection the host filled for a kReleaseShareTree dialog.
  virtual ShareTreeSelection* ShareTree() { return nullptr; }

 private:
  // Traces a window that could not be made; a self-deleting dialog then
  // goes at once.
  bool ForgetIfFailed(bool created);
  template <typename Owner>
  int CreateAndRunModal(Owner owner);

  DialogRow row_;
};

}  // namespace ui

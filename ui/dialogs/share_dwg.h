#pragma once
// ShareDwg: the drawings of the group's cloud space (ChatDrawBtn, and the
// choice of a drawing for a new shared chat). A chosen drawing is sent to
// the group as a drawing message (nothing is uploaded: the space has it) or
// becomes the drawing of a shared chat, which the opener then enters.
//
// The host fills the tree when the window is initialised and takes it back
// with ReleaseShareTree when the window is gone.

#include <optional>
#include <string>

#include "host/host_records.h"
#include "service/drawings/space_drawings.h"
#include "ui/dialogs/dialog_frame.h"
#include "ui/kit/row_list.h"

class ShareDwg final : public ui::DialogFrame {
 public:
  // What RunModal returns.
  enum Result : int {
    kClosed = 1,
    kShared = 2,      // the chosen drawing was sent to the group
    kSharedChat = 3,  // Chosen() is the drawing of a shared chat
  };

  // `forSharedChat`: opened to choose a shared chat's drawing; sending to the
  // group is then not offered.
  ShareDwg(service::drawings::ShareTreeSource& source, bool forSharedChat);

  // The drawing chosen for a shared chat (after kSharedChat).
  const std::optional<ShareTreeDrawing>& Chosen() const { return chosen_; }

 protected:
  void Notify(ui::TNotifyUI& msg) override;
  ShareTreeSelection* ShareTree() override { return &tree_; }

 private:
  void OnWindowInit();
  void OnClick(const ui::Control& sender);
  // The drawing of the highlighted row; tells the user when there is none.
  const ShareTreeDrawing* Highlighted();
  void ShowTips(const char* text);

  service::drawings::ShareTreeSource& source_;
  bool forSharedChat_;
  ShareTreeSelection tree_;
  std::optional<ShareTreeDrawing> chosen_;
  ui::RowList rows_;
  ui::Control tips_;
};

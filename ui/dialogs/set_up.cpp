#include "ui/dialogs/set_up.h"

#include "platform/trace.h"
#include "ui/dialogs/dialog_rows.h"

CSetUp::CSetUp(platform::DataFolders& folders, ui::FolderBrowser browseForFolder)
    : DialogFrame(ui::dialogs::kSetUp),
      folders_(folders),
      browseForFolder_(std::move(browseForFolder)) {}

void CSetUp::PlaceWindow() {
  ui::Rect own = GetWindowRect();
  MoveWindow(ui::Rect{anchor_.x, anchor_.y - own.Height(), anchor_.x + own.Width(), anchor_.y});
}

void CSetUp::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyWindowInit) {
    ShowDownloadPath();
  } else if (ui::EqualsNoCase(msg.sType, ui::kNotifyClick)) {
    const std::string name = msg.pSender.GetName();
    if (name == "SetUp_SelectDownloadPathBtn") {
      OnUploadFiles();
    } else if (name == "SetUp_Closebtn" || name == "SetUp_CancelBtn" ||
               name == "SetUp_ConfirmBtn") {
      Close(1);
    }
  }
  DialogFrame::Notify(msg);
}

void CSetUp::OnUploadFiles() {
  platform::Trace("OnUploadFiles enter!!!!!!");
  WString chosen = browseForFolder_ ? browseForFolder_() : WString();
  if (!chosen.empty()) {
    folders_.SetDownloadPath(chosen);
    ShowDownloadPath();
    // Stored at once: confirm and cancel both only close the dialog. A
    // cancelled browser stores nothing, so the per-user default is never
    // pinned for the other users of this machine account.
    if (!folders_.SaveDownloadPath(chosen)) {
      platform::Trace("CSetUp: the download folder could not be stored; it holds until exit");
    }
  }
  platform::Trace("OnUploadFiles exit!!!!!!");
}

void CSetUp::ShowDownloadPath() {
  ui::Control label = FindControl("SetUp_DownloadPathLabel");
  const WString path = folders_.GetDownloadPath();
  label.SetText(path);
  label.SetAttribute("tooltip", path);
}

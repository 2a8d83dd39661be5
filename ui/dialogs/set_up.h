#pragma once
// CSetUp: the settings dialog opened beside the main window's IMSetUp button.
// Its one setting is the folder received files go to: a new folder chosen
// in the folder browser takes effect and is stored at once, so confirm,
// cancel and close all just close the dialog.

#include "platform/data_folders.h"
#include "ui/dialogs/dialog_frame.h"
#include "ui/kit/folder_browser.h"

class CSetUp final : public ui::DialogFrame {
 public:
  explicit CSetUp(platform::DataFolders& folders,
                  ui::FolderBrowser browseForFolder = ui::BrowseForFolder);

  // The dialog opens with its left edge at the anchor's x and its bottom
  // edge at the anchor's y (screen coordinates): the opening button's
  // bottom-right corner.
  void SetAnchor(ui::Point anchor) { anchor_ = anchor; }

 protected:
  void PlaceWindow() override;
  void Notify(ui::TNotifyUI& msg) override;

 private:
  // Runs the folder browser; a chosen folder becomes the download folder.
  void OnUploadFiles();
  void ShowDownloadPath();

  platform::DataFolders& folders_;
  ui::FolderBrowser browseForFolder_;
  ui::Point anchor_;
};

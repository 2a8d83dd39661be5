#pragma once
// CDrawingSelection: choose a drawing to send to the open conversation, from
// the drawings open in the host or from a file on disk (DWG, DXF, DWT, DWS).
//
// Sending may start an upload to the group's cloud space: the dialog then
// shows CWaitWnd and stays open, untouchable (closing it is refused), until
// the upload worker
// reports to it with 1025; it hands the report to the controller (which
// sends the drawing message or marks its placeholder failed) and closes.

#include <string>

#include "service/drawings/space_drawings.h"
#include "ui/dialogs/dialog_frame.h"
#include "ui/kit/row_list.h"

class CWaitWnd;

class CDrawingSelection final : public ui::DialogFrame {
 public:
  explicit CDrawingSelection(service::drawings::DrawingSelectionSource& source);
  ~CDrawingSelection() override;

  bool Uploading() const { return uploading_; }

 protected:
  void Notify(ui::TNotifyUI& msg) override;
  ui::LRESULT HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) override;
  // Refused while the upload runs: 1025 must find the window.
  ui::LRESULT OnClose(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam, bool& bHandled) override;

 private:
  void OnWindowInit();
  void OnClick(const ui::Control& sender);
  // Adds the drawing (once) and chooses it.
  void AddDrawing(const WString& path);
  void ChooseFromDisk();
  void SendChosen();
  void OnUploadFinished(bool stored);
  void SetUploading(bool uploading);
  void ShowTips(const char* text);

  service::drawings::DrawingSelectionSource& source_;
  ui::RowList rows_;
  CWaitWnd* wait_ = nullptr;  // shown while the upload runs; it deletes itself
  bool uploading_ = false;

  ui::Control tips_;
  ui::Control sendBtn_;
  ui::Control cancelBtn_;
  ui::Control closeBtn_;
  ui::Control fromDiskBtn_;
};

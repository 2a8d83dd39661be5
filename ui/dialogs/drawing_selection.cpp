#include "ui/dialogs/drawing_selection.h"

#include "platform/trace.h"
#include "ui/dialogs/dialog_rows.h"
#include "ui/dialogs/drawing_rows.h"
#include "ui/dialogs/wait_wnd.h"
#include "ui/kit/file_dialog.h"

using service::drawings::DrawingSendStep;

namespace {

// The folder part of a path, shown under the drawing's name.
WString FolderOf(const WString& path) {
  const size_t slash = path.find_last_of(u"/\\");
  return slash == WString::npos ? WString() : path.substr(0, slash);
}

WString NameOf(const WString& path) {
  const size_t slash = path.find_last_of(u"/\\");
  return slash == WString::npos ? path : path.substr(slash + 1);
}

}  // namespace

CDrawingSelection::CDrawingSelection(service::drawings::DrawingSelectionSource& source)
    : DialogFrame(ui::dialogs::kDrawingSelection), source_(source) {}

CDrawingSelection::~CDrawingSelection() {
  if (wait_ != nullptr) wait_->Close(1);
}

void CDrawingSelection::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyWindowInit) {
    OnWindowInit();
  } else if (msg.sType == ui::kNotifyClick) {
    OnClick(msg.pSender);
  }
  DialogFrame::Notify(msg);
}

void CDrawingSelection::OnWindowInit() {
  tips_ = FindControl("DrawingSelection_Tips");
  sendBtn_ = FindControl("DrawingSelection_SendBtn");
  cancelBtn_ = FindControl("DrawingSelection_CancelBtn");
  closeBtn_ = FindControl("DrawingSelection_closebtn");
  fromDiskBtn_ = FindControl("DrawingSelection_FromDiskBtn");
  rows_ = ui::dialogs::SetUpDrawingRows(FindControl("DrawingSelection_List"));
  for (const WString& path : source_.HostDrawings()) AddDrawing(path);
  ShowTips(rows_.Count() == 0 ? "主机中没有打开的图纸，请从磁盘选择。" : "选择要发送的图纸。");
}

void CDrawingSelection::OnClick(const ui::Control& sender) {
  if (uploading_) return;  // nothing is touched until the upload reports
  const std::string name = sender.GetName();
  if (name == "DrawingSelection_closebtn" || name == "DrawingSelection_CancelBtn") {
    Close(1);
  } else if (name == "DrawingSelection_FromDiskBtn") {
    ChooseFromDisk();
  } else if (name == "DrawingSelection_SendBtn") {
    SendChosen();
  } else if (ui::dialogs::IsDrawingRowControl(name)) {
    rows_.Select(rows_.RowOf(sender));
  }
}

void CDrawingSelection::AddDrawing(const WString& path) {
  if (!rows_) return;
  int row = rows_.Find(path);
  if (row < 0) row = ui::dialogs::AddDrawingRow(rows_, path, NameOf(path), FolderOf(path));
  rows_.Select(row);
}

void CDrawingSelection::ChooseFromDisk() {
  const WString path =
      ui::ChooseOpenFile(this, u"图纸文件(*.dwg;*.dxf;*.dwt;*.dws)", u"*.dwg;*.dxf;*.dwt;*.dws");
  if (path.empty()) return;
  AddDrawing(path);
  ShowTips("选择要发送的图纸。");
}

void CDrawingSelection::SendChosen() {
  const int row = rows_ ? rows_.GetCurSel() : -1;
  if (row < 0) {
    ShowTips("请先选择一张图纸。");
    return;
  }
  switch (source_.Send(rows_.UserData(row), GetHWND())) {
    case DrawingSendStep::kUploading:
      SetUploading(true);
      return;
    case DrawingSendStep::kSentFromSpace:
    case DrawingSendStep::kSentAsFile:
      Close(1);
      return;
    case DrawingSendStep::kNoSpace:
      ShowTips("无法连接群空间，图纸没有发送。");
      return;
    case DrawingSendStep::kRefused:
      ShowTips("这张图纸无法发送，请确认文件存在且是图纸文件。");
      return;
  }
}

ui::LRESULT CDrawingSelection::HandleMessage(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam) {
  if (uMsg == platform::msg::kUploadFinished) {
    OnUploadFinished(wParam == 1);
    return 1;
  }
  return DialogFrame::HandleMessage(uMsg, wParam, lParam);
}

ui::LRESULT CDrawingSelection::OnClose(unsigned, ui::WPARAM, ui::LPARAM, bool& bHandled) {
  bHandled = uploading_;
  if (uploading_) platform::Trace("CDrawingSelection: closing waits for the upload's report");
  return 0;
}

void CDrawingSelection::OnUploadFinished(bool stored) {
  if (!uploading_) {
    platform::Trace("CDrawingSelection: upload report without an upload");
    return;
  }
  SetUploading(false);
  // A failed upload is shown by its placeholder in the conversation.
  source_.Finish(stored);
  Close(1);
}

void CDrawingSelection::SetUploading(bool uploading) {
  uploading_ = uploading;
  for (ui::Control* control : {&sendBtn_, &cancelBtn_, &closeBtn_, &fromDiskBtn_}) {
    control->SetEnabled(!uploading);
  }
  if (uploading) {
    ShowTips("正在上传图纸到群空间…");
    wait_ = CWaitWnd::Open(this);
  } else if (wait_ != nullptr) {
    wait_->Close(1);
    wait_ = nullptr;  // it deletes itself
  }
}

void CDrawingSelection::ShowTips(const char* text) {
  tips_.SetText(platform::W(text));
}

#include "ui/dialogs/share_dwg.h"

#include <cstdio>
#include <string>

#include "ui/dialogs/dialog_rows.h"
#include "ui/dialogs/drawing_rows.h"

namespace {

// "1.2 MB", "36 KB", "512 B".
WString SizeText(int64_t bytes) {
  char text[32];
  if (bytes >= 1024 * 1024) {
    std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
  } else if (bytes >= 1024) {
    std::snprintf(text, sizeof text, "%lld KB", static_cast<long long>(bytes / 1024));
  } else {
    std::snprintf(text, sizeof text, "%lld B", static_cast<long long>(bytes));
  }
  return platform::W(text);
}

}  // namespace

ShareDwg::ShareDwg(service::drawings::ShareTreeSource& source, bool forSharedChat)
    : DialogFrame(ui::dialogs::kShareDwg), source_(source), forSharedChat_(forSharedChat) {}

void ShareDwg::Notify(ui::TNotifyUI& msg) {
  if (msg.sType == ui::kNotifyWindowInit) {
    OnWindowInit();
  } else if (msg.sType == ui::kNotifyClick) {
    OnClick(msg.pSender);
  }
  DialogFrame::Notify(msg);
}

void ShareDwg::OnWindowInit() {
  tips_ = FindControl("ShareDwg_Tips");
  rows_ = ui::dialogs::SetUpDrawingRows(FindControl("ShareDwg_List"));
  const WString group = source_.GroupName();
  if (!group.empty()) FindControl("ShareDwg_Title").SetText(group + u" · 群空间图纸");
  FindControl("ShareDwg_SendBtn").SetVisible(!forSharedChat_);
  if (!source_.FillTree(tree_)) {
    ShowTips("无法读取群空间的图纸。");
    return;
  }
  for (size_t i = 0; i < tree_.drawings.size(); ++i) {
    const ShareTreeDrawing& drawing = tree_.drawings[i];
    const WString folder = drawing.folderId == 0 ? u"群空间" : u"群空间子文件夹";
    ui::dialogs::AddDrawingRow(rows_, platform::Utf8ToUtf16(std::to_string(i)), drawing.name,
                               folder + u" · " + SizeText(drawing.size));
  }
  if (tree_.drawings.empty()) {
    ShowTips("群空间中还没有图纸。发送图纸到群聊后，图纸会保存在群空间。");
  } else {
    rows_.Select(0);
    ShowTips(forSharedChat_ ? "选择一张图纸，与群成员共享聊图。" : "选择群空间的图纸。");
  }
}

void ShareDwg::OnClick(const ui::Control& sender) {
  const std::string name = sender.GetName();
  if (name == "ShareDwg_closebtn" || name == "ShareDwg_CancelBtn") {
    Close(kClosed);
  } else if (ui::dialogs::IsDrawingRowControl(name)) {
    rows_.Select(rows_.RowOf(sender));
  } else if (name == "ShareDwg_SendBtn") {
    const ShareTreeDrawing* drawing = Highlighted();
    if (drawing == nullptr) return;
    if (source_.Share(*drawing)) {
      Close(kShared);
    } else {
      ShowTips("图纸没有发送，请稍后再试。");
    }
  } else if (name == "ShareDwg_SharedChatBtn") {
    if (const ShareTreeDrawing* drawing = Highlighted()) {
      chosen_ = *drawing;  // the tree goes back to the host when the window goes
      Close(kSharedChat);
    }
  }
}

const ShareTreeDrawing* ShareDwg::Highlighted() {
  const int row = rows_ ? rows_.GetCurSel() : -1;
  const size_t index = row >= 0 ? std::stoul(platform::Utf16ToUtf8(rows_.UserData(row))) : 0;
  if (row < 0 || index >= tree_.drawings.size()) {
    ShowTips("请先选择一张图纸。");
    return nullptr;
  }
  return &tree_.drawings[index];
}

void ShareDwg::ShowTips(const char* text) {
  tips_.SetText(platform::W(text));
}

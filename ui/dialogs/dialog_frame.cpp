#include "ui/dialogs/dialog_frame.h"

#include "host/host_access.h"
#include "platform/trace.h"

namespace ui {

namespace {

template <typename Owner>
bool CreateFramed(WindowImplBase& dialog, const DialogRow& row, Owner owner) {
  if (dialog.IsCreated()) return false;
  if (!dialog.Create(owner, WString(row.windowName), WindowStyle::kPopupTool)) {
    platform::Trace("%s: the dialog could not be created from %s", row.className, row.skinFile);
    return false;
  }
  return true;
}

}  // namespace

bool DialogFrame::CreateDialog(WindowImplBase* owner) {
  return CreateFramed(*this, row_, owner);
}

template <typename Owner>
int DialogFrame::CreateAndRunModal(Owner owner) {
  if (!ForgetIfFailed(CreateFramed(*this, row_, owner))) return -1;
  PlaceWindow();
  return ShowModal();
}

int DialogFrame::RunModal(WindowImplBase* owner) {
  return CreateAndRunModal(owner);
}

int DialogFrame::RunModal(HostWindow owner) {
  return CreateAndRunModal(owner);
}

bool DialogFrame::ShowDialog(WindowImplBase* owner) {
  if (!ForgetIfFailed(CreateDialog(owner))) return false;
  PlaceWindow();
  ShowWindow(true, true);
  return true;
}

bool DialogFrame::ShowAt(WindowImplBase* owner, Point screenPoint) {
  if (!ForgetIfFailed(CreateDialog(owner))) return false;
  Rect own = GetWindowRect();
  MoveWindow(Rect{screenPoint.x, screenPoint.y, screenPoint.x + own.Width(),
                  screenPoint.y + own.Height()});
  ShowWindow(true, true);
  return true;
}

bool DialogFrame::ForgetIfFailed(bool created) {
  if (!created && row_.finalMessage == FinalMessage::kSelfDelete) delete this;
  return created;
}

LRESULT DialogFrame::OnKillFocus(unsigned uMsg, WPARAM wParam, LPARAM lParam, bool& bHandled) {
  switch (row_.killFocus) {
    case KillFocus::kBase:
      return WindowImplBase::OnKillFocus(uMsg, wParam, lParam, bHandled);
    case KillFocus::kIgnore:
      bHandled = true;
      return 0;
    case KillFocus::kClose:
      Close(1);
      bHandled = true;
      return 0;
    case KillFocus::kCloseThenBase:
      Close(1);
      return WindowImplBase::OnKillFocus(uMsg, wParam, lParam, bHandled);
  }
  return 0;
}

void DialogFrame::OnFinalMessage() {
  switch (row_.finalMessage) {
    case FinalMessage::kKeep:
      return;
    case FinalMessage::kSelfDelete:
      delete this;
      return;
    case FinalMessage::kReleaseShareTree: {
      std::string tag = std::string(row_.className) + "::OnFinalMessage error ";
      if (HostCloudService* cloud = host::AcquireCloudService(tag.c_str())) {
        cloud->ReleaseShareTree(ShareTree());
      }
      return;
    }
  }
}

}  // namespace ui

#include "ui/main/request_list_pane.h"

#include <algorithm>

#include "ui/main/friend_rules.h"
#include "ui/main/pane_rows.h"

namespace ui::main {
namespace {

constexpr std::string_view kImage = "AddFriendRequire_FriendImage";
constexpr std::string_view kName = "AddFriendRequire_NickName";
constexpr std::string_view kButton = "FriendRequire_ConfirmBtn";

void ApplyLook(RowList& rows, int row, RequestState state) {
  ButtonLook look = RequestButtonLook(state);
  if (look.text != nullptr) rows.SetText(row, kButton, look.text);
  rows.Set(row, kButton, "textcolor", look.textColor);
  rows.Set(row, kButton, "bkcolor", look.backColor);
  rows.Set(row, kButton, "enabled", look.enabled ? u"true" : u"false");
}

}  // namespace

RequestListPane::RequestListPane(MainControls& controls, service::RequestListSource& source)
    : controls_(controls), source_(source) {}

void RequestListPane::SetUp() {
  rows_ = SetUpRows(controls_.friendRequestList, "Friend_Request_Item.xml", kRowHeight, kName);
}

void RequestListPane::DisplayFriendRequireList() {
  if (!rows_) return;
  RowList::Batch batch(rows_);
  rows_.RemoveAll();
  for (const PendingFriendRequest& request : source_.Requests()) {
    const WString& id = request.pendency.identifier;
    if (id.empty()) continue;  // nobody to answer
    int row = rows_.Add(id);
    rows_.Set(row, kImage, "bkimage", source_.FaceImage(id));
    rows_.SetText(row, kName, source_.RequesterName(id));
    rows_.Set(row, kButton, "userdata", id);
    ApplyLook(rows_, row, request.handled ? RequestState::kAccepted : RequestState::kPending);
  }
}

bool RequestListPane::HasPending() const {
  std::vector<PendingFriendRequest> requests = source_.Requests();
  return std::any_of(requests.begin(), requests.end(),
                     [](const PendingFriendRequest& r) { return !r.handled; });
}

void RequestListPane::Accept(const Control& button) {
  int row = rows_.RowOf(button);
  if (row < 0 || rows_.Get(row, kButton, "enabled") == u"false") return;
  if (rows_.Get(row, kButton, "text") != RequestButtonLook(RequestState::kPending).text) return;
  // A refused answer keeps the button as it was, so the user can try again.
  if (source_.Accept(rows_.UserData(row))) ApplyLook(rows_, row, RequestState::kJustAccepted);
}

void RequestListPane::UpdatePicture(const WString& id) {
  int row = rows_.Find(id);
  if (row >= 0) rows_.Set(row, kImage, "bkimage", source_.FaceImage(id));
}

}  // namespace ui::main

#include "ui/main/friend_list_pane.h"

#include "service/chat_tools.h"
#include "ui/main/friend_rules.h"
#include "ui/main/pane_rows.h"
#include "ui/main/unread_dots.h"

namespace ui::main {
namespace {

// The template's own names, which also key the rows' values.
constexpr std::string_view kItem = "FriendItemSelected";
constexpr std::string_view kImage = "friend_list_Image";
constexpr std::string_view kNickname = "friend_list_nickname";

}  // namespace

FriendListPane::FriendListPane(MainControls& controls, service::FriendListSource& source)
    : controls_(controls), source_(source) {}

void FriendListPane::SetUp() {
  rows_ = SetUpRows(controls_.friendsList, "friend_list_item.xml", kRowHeight, kNickname);
  rows_.SetFiller([this](int row) { FillRow(row); });
}

void FriendListPane::UpdateFriendList(const WString& selectedId) {
  if (!controls_.searchEdit || !rows_) return;
  std::vector<WString> ids =
      FriendListRows(source_.FriendEntries(), controls_.searchEdit.GetText());
  {
    RowList::Batch batch(rows_);
    rows_.RemoveAll();
    for (const WString& id : ids) rows_.Add(id);
  }
  RefreshNewFriendEntry();  // requests shown now are read, drawn or not
  // After the batch: its end resets the view's selection.
  rows_.Select(selectedId.empty() ? -1 : rows_.Find(selectedId));
}

void FriendListPane::FillRow(int row) {
  WString id = rows_.UserData(row);
  if (std::optional<FriendsList_Stru> found = source_.FindFriend(id)) {
    FillFriend(row, *found);
  } else if (id == kNewFriendsId || id == kGroupsId) {
    FillFixed(row, id);
  }  // else a friend gone since the rebuild; the next rebuild drops the row
}

void FriendListPane::SetNames(int row, const char16_t* item, const char16_t* image,
                              const char16_t* name) {
  rows_.Set(row, kItem, "name", item);
  rows_.Set(row, kImage, "name", image);
  rows_.Set(row, kNickname, "name", name);
  WString id = rows_.UserData(row);
  rows_.Set(row, kImage, "userdata", id);
  rows_.Set(row, kNickname, "userdata", id);
}

void FriendListPane::FillFixed(int row, const WString& id) {
  bool requests = id == kNewFriendsId;
  if (requests) {
    SetNames(row, u"AddFriendRequire_NewFriendItem", u"AddFriendRequire_NewFriendImage",
             u"AddFriendRequire_NewFriendName");
  } else {
    SetNames(row, u"AddFriendRequire_NewGroupItem", u"AddFriendRequire_NewGroupImage",
             u"AddFriendRequire_NewGroupName");
  }
  rows_.SetText(row, kNickname, requests ? u"新的朋友" : u"群聊");
  rows_.Set(row, kImage, "bkimage",
            requests ? u"..\\img\\NewFriend.png" : u"..\\img\\GroupChat.png");
  // The picture takes no clicks: they go to the entry.
  rows_.Set(row, kImage, "mouse", u"false");
  SetRowDot(rows_, row, kImage, kNewFriendDot, false);
  if (requests) RefreshNewFriendEntry();
}

void FriendListPane::FillFriend(int row, const FriendsList_Stru& friendRecord) {
  SetNames(row, u"FriendItemSelected", u"friend_list_Image", u"friend_list_nickname");
  rows_.SetText(row, kNickname, CChatTools::FriendDisplayName(friendRecord));
  rows_.Set(row, kImage, "bkimage", source_.FaceImage(friendRecord.identifier));
  rows_.Set(row, kImage, "mouse", u"true");
  SetRowDot(rows_, row, kImage, kNewFriendDot, false);
}

void FriendListPane::RefreshNewFriendEntry() {
  bool requestsShown = controls_.chatModule.GetCurSel() == kRequestsPage;
  if (requestsShown) source_.SetRequestsUnread(false);
  int row = rows_.Find(kNewFriendsId);
  if (row >= 0) {
    SetRowDot(rows_, row, kImage, kNewFriendDot, !requestsShown && source_.HasUnreadRequests());
  }
}

void FriendListPane::UpdatePicture(const WString& id) {
  int row = rows_.Find(id);
  if (row >= 0 && source_.FindFriend(id)) rows_.Set(row, kImage, "bkimage", source_.FaceImage(id));
}

void FriendListPane::UpdateName(const WString& id, const WString& name) {
  int row = rows_.Find(id);
  if (row >= 0) rows_.SetText(row, kNickname, name);
}

WString FriendListPane::IdOf(const Control& control) const {
  int row = rows_.RowOf(control);
  return row >= 0 ? rows_.UserData(row) : WString();
}

}  // namespace ui::main

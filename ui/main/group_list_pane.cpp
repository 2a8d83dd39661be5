#include "ui/main/group_list_pane.h"

#include "ui/main/pane_rows.h"

namespace ui::main {
namespace {

constexpr std::string_view kImage = "GroupList_Img";
constexpr std::string_view kName = "GroupList_Nickname";
constexpr std::string_view kOwner = "GroupList_IsMaster";

}  // namespace

GroupListPane::GroupListPane(const WindowImplBase& window, service::GroupListSource& source)
    : window_(window), source_(source) {}

void GroupListPane::SetUp() {
  rows_ = SetUpRows(window_.FindControl("GroupsList"), "group_list_item.xml", kRowHeight, kName);
}

void GroupListPane::UpdateGroupList() {
  if (!rows_) return;
  RowList::Batch batch(rows_);
  rows_.RemoveAll();
  for (const GroupInfo& group : source_.Groups()) {
    int row = rows_.Add(group.group_id);
    rows_.Set(row, kImage, "bkimage", source_.FaceImage(group.group_id));
    rows_.Set(row, kImage, "userdata", group.group_id);
    rows_.SetText(row, kName, group.name);
    rows_.Set(row, kName, "userdata", group.group_id);
    rows_.SetText(row, kOwner, source_.IsOwnedByUser(group) ? u"群主" : u"");
  }
}

void GroupListPane::UpdatePicture(const WString& groupId) {
  int row = rows_.Find(groupId);
  if (row >= 0) rows_.Set(row, kImage, "bkimage", source_.FaceImage(groupId));
}

WString GroupListPane::IdOf(const Control& control) const {
  int row = rows_.RowOf(control);
  return row >= 0 ? rows_.UserData(row) : WString();
}

}  // namespace ui::main

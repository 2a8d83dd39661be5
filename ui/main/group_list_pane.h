#pragma once
// The group list (GroupsList, rows from "group_list_item.xml"): the joined
// groups in the service's order, "群主" beside the ones the user owns.

#include "platform/strings.h"
#include "service/panes/group_list_source.h"
#include "ui/kit/row_list.h"
#include "ui/kit/window_impl_base.h"

namespace ui::main {

class GroupListPane {
 public:
  static constexpr int kRowHeight = 70;

  GroupListPane(const WindowImplBase& window, service::GroupListSource& source);

  // After the skin is built: the list's row template.
  void SetUp();
  // 3185.
  void UpdateGroupList();
  void UpdatePicture(const WString& groupId);
  // The group id of the row `control` belongs to; empty for other controls.
  WString IdOf(const Control& control) const;

  RowList& rows() { return rows_; }

 private:
  const WindowImplBase& window_;
  service::GroupListSource& source_;
  RowList rows_;
};

}  // namespace ui::main

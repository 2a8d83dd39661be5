#include "ui/kit/list_batch.h"

#include "ui/kit/qt/chat_list_view.h"
#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/row_list_view.h"

namespace ui {
namespace {

// Calls `begin` or `end` on the model behind `list`.
void OnModel(const Control& list, bool begin) {
  QWidget* widget = qt::WidgetOf(list);
  if (auto* rows = qobject_cast<qt::RowListView*>(widget)) {
    begin ? rows->rows()->BeginBatch() : rows->rows()->EndBatch();
  } else if (auto* chat = qobject_cast<qt::ChatListView*>(widget)) {
    begin ? chat->items()->BeginBatch() : chat->items()->EndBatch();
  }
}

}  // namespace

ListBatch::ListBatch(const Control& list) : list_(list) {
  OnModel(list_, true);
}

ListBatch::~ListBatch() {
  OnModel(list_, false);
}

}  // namespace ui

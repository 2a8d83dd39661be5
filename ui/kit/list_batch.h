#pragma once
// Changes to a long list (a row list or a chat list) made inside a batch
// reach the screen once, when the last batch open on that list ends.

#include "ui/kit/control.h"

namespace ui {

class ListBatch {
 public:
  // Nothing is batched when `list` is neither kind of long list.
  explicit ListBatch(const Control& list);
  // A RowList or a ChatList.
  template <class List>
  explicit ListBatch(const List& list) : ListBatch(list.control()) {}
  ~ListBatch();
  ListBatch(const ListBatch&) = delete;
  ListBatch& operator=(const ListBatch&) = delete;

 private:
  Control list_;
};

}  // namespace ui

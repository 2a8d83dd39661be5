#pragma once
// Sets a pane's list up as rows of one template.

#include <string_view>

#include "ui/kit/row_list.h"

namespace ui::main {

// The rows of `list`, drawn from `skinFile`, each `rowHeight` high, named for
// screen readers by the text of `nameControl`. A missing template is traced
// (the rows then draw nothing).
RowList SetUpRows(const Control& list, std::string_view skinFile, int rowHeight,
                  std::string_view nameControl);

}  // namespace ui::main

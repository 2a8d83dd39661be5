#include "ui/main/pane_rows.h"

#include <string>

#include "platform/trace.h"

namespace ui::main {

RowList SetUpRows(const Control& list, std::string_view skinFile, int rowHeight,
                  std::string_view nameControl) {
  RowList rows(list);
  if (!rows.SetTemplate(skinFile, rowHeight)) {
    platform::Trace("%s: the row template %s is missing", list.GetName().c_str(),
                    std::string(skinFile).c_str());
  }
  rows.SetNameControl(nameControl);
  return rows;
}

}  // namespace ui::main

#pragma once
// The drawing list of the two drawing dialogs: one row per drawing with its
// type icon, its name and a detail line (folder or size), drawn from
// "Drawing_list_item.xml".

#include <string>

#include "platform/strings.h"
#include "ui/kit/row_list.h"

namespace ui::dialogs {

inline constexpr int kDrawingRowHeight = 52;

// The rows of `list` (empty when the template is missing: traced).
RowList SetUpDrawingRows(const Control& list);
// Adds a row whose user data is `key`; returns its index.
int AddDrawingRow(RowList& rows, const WString& key, const WString& name, const WString& detail);
// True for the controls of a drawing row (a click on one chooses its row).
bool IsDrawingRowControl(const std::string& name);

}  // namespace ui::dialogs

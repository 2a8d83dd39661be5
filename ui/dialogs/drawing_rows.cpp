#include "ui/dialogs/drawing_rows.h"

#include "platform/trace.h"
#include "service/drawings/drawing_files.h"

namespace ui::dialogs {
namespace {

constexpr std::string_view kIcon = "DrawingItem_Icon";
constexpr std::string_view kName = "DrawingItem_Name";
constexpr std::string_view kDetail = "DrawingItem_Detail";

}  // namespace

RowList SetUpDrawingRows(const Control& list) {
  RowList rows(list);
  if (!rows.SetTemplate("Drawing_list_item.xml", kDrawingRowHeight)) {
    platform::Trace("%s: the row template Drawing_list_item.xml is missing",
                    list.GetName().c_str());
  }
  rows.SetNameControl(kName);
  return rows;
}

int AddDrawingRow(RowList& rows, const WString& key, const WString& name, const WString& detail) {
  const int row = rows.Add(key);
  // DXF has its own picture; the other drawing types look like DWG.
  const bool dxf = service::drawings::DrawingTypeOf(name) == u"DXF";
  rows.Set(row, kIcon, "bkimage", dxf ? u"..\\img\\DXF.png" : u"..\\img\\DWG.png");
  rows.SetText(row, kName, name);
  rows.SetText(row, kDetail, detail);
  rows.Set(row, kDetail, "tooltip", detail);
  return row;
}

bool IsDrawingRowControl(const std::string& name) {
  return name == kIcon || name == kName || name == kDetail;
}

}  // namespace ui::dialogs

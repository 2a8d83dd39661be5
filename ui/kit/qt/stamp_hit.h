#pragma once
// Hit-testing a list whose rows are painted by a stamp: the row under the
// point is bound to the stamp, whose widgets then say what was hit.

#include <QAbstractItemView>
#include <QWidget>

#include "ui/kit/qt/control_ref.h"

namespace ui::qt {

// The deepest named control of the stamped row at a viewport point, the
// stamp when none is; null off the rows. `View` has
// `QWidget* BindStamp(int row, int width)`.
template <class View>
QWidget* StampControlAt(View& view, QPoint viewportPos) {
  QModelIndex index = view.indexAt(viewportPos);
  if (!index.isValid()) return nullptr;
  QRect rect = view.visualRect(index);
  QWidget* stamp = view.BindStamp(index.row(), rect.width());
  if (!stamp) return nullptr;
  QWidget* hit = stamp->childAt(viewportPos - rect.topLeft());
  QWidget* control = NearestControl(hit ? hit : stamp);
  return control ? control : stamp;
}

}  // namespace ui::qt

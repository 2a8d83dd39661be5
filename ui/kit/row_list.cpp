#include "ui/kit/row_list.h"

#include "ui/kit/qt/control_ref.h"
#include "ui/kit/qt/row_list_view.h"
#include "ui/kit/resources.h"

namespace ui {
namespace {

QString ToQ(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

qt::RowListView* ViewOf(const Control& list) {
  return qobject_cast<qt::RowListView*>(qt::WidgetOf(list));
}

qt::RowModel* ModelOf(const Control& list) {
  qt::RowListView* view = ViewOf(list);
  return view ? view->rows() : nullptr;
}

// The skin folder of the window the list lives in.
QString SkinFolderOf(QWidget* w) {
  for (; w; w = w->parentWidget()) {
    QVariant folder = w->property("im_skinFolder");
    if (folder.isValid()) return folder.toString();
  }
  return QString::fromStdString(ResourcePath("DuiLibRes/skin"));
}

}  // namespace

RowList::RowList(const Control& list) {
  if (ViewOf(list)) list_ = list;
}

RowList::operator bool() const {
  return ViewOf(list_) != nullptr;
}

bool RowList::SetTemplate(std::string_view skinFile, int rowHeight) {
  qt::RowListView* view = ViewOf(list_);
  return view && view->SetTemplate(SkinFolderOf(view), ToQ(skinFile), rowHeight);
}

void RowList::SetNameControl(std::string_view control) {
  if (qt::RowModel* model = ModelOf(list_)) model->SetNameControl(control);
}

void RowList::SetFiller(std::function<void(int row)> filler) {
  if (qt::RowModel* model = ModelOf(list_)) model->SetFiller(std::move(filler));
}

int RowList::Count() const {
  qt::RowModel* model = ModelOf(list_);
  return model ? model->rowCount() : 0;
}

int RowList::Add(const WString& userData, int index) {
  qt::RowModel* model = ModelOf(list_);
  return model ? model->Insert(index, userData) : -1;
}

bool RowList::Remove(int row) {
  qt::RowModel* model = ModelOf(list_);
  return model && model->Remove(row);
}

void RowList::RemoveAll() {
  if (qt::RowModel* model = ModelOf(list_)) model->Clear();
}

int RowList::Find(const WString& userData) const {
  qt::RowModel* model = ModelOf(list_);
  return model ? model->Find(userData) : -1;
}

WString RowList::UserData(int row) const {
  qt::RowModel* model = ModelOf(list_);
  const qt::RowModel::Row* data = model ? model->RowAt(row) : nullptr;
  return data ? data->userData : WString();
}

void RowList::Set(int row, std::string_view control, std::string_view attribute,
                  const WString& value) {
  if (qt::RowModel* model = ModelOf(list_)) {
    model->SetValue(row, model->SlotOf(control, attribute), value);
  }
}

WString RowList::Get(int row, std::string_view control, std::string_view attribute) const {
  qt::RowModel* model = ModelOf(list_);
  return model ? model->Value(row, model->SlotOf(control, attribute)) : WString();
}

void RowList::Select(int row) {
  qt::RowListView* view = ViewOf(list_);
  if (!view) return;
  QModelIndex index = view->rows()->index(row);
  if (index.isValid()) {
    view->setCurrentIndex(index);
  } else {
    view->clearSelection();
    view->setCurrentIndex({});
  }
}

int RowList::GetCurSel() const {
  qt::RowListView* view = ViewOf(list_);
  if (!view) return -1;
  QModelIndexList selected = view->selectionModel()->selectedIndexes();
  return selected.isEmpty() ? -1 : selected.front().row();
}

int RowList::RowOf(const Control& control) const {
  qt::RowListView* view = ViewOf(list_);
  QWidget* w = qt::WidgetOf(control);
  if (!view || !w || !view->Stamp()) return -1;
  return view->Stamp() == w || view->Stamp()->isAncestorOf(w) ? view->BoundRow() : -1;
}

}  // namespace ui

#pragma once
// The list for long lists ("ImRowList" in skins): rows are data (a user data
// text and the attribute values of the template's named controls), and one
// instance of the row template, the stamp, paints the rows on screen. 500 rows
// cost 500 small records and no widgets; scrolling and painting touch only
// the rows in view.
//
// Events: a left click on a row is a "click" of the template's button under
// the mouse, or an "itemclick" of the row; the stamp is bound to that row
// while the notification runs, so window code reads the row's values from
// the controls it is given, as it would from a widget item.

#include <QAbstractListModel>
#include <QHash>
#include <QListView>
#include <QString>
#include <QStringList>

#include <unordered_map>
#include <vector>

namespace ui::qt {

// One value slot of a row: a template control and an attribute ("text",
// "userdata", "normalimage", ...).
struct RowSlot {
  QString control;
  QString attribute;
  bool operator==(const RowSlot&) const = default;
};

class RowModel : public QAbstractListModel {
  Q_OBJECT
 public:
  struct Row {
    QString userData;
    QHash<QString, QString> values;  // key: control + '\n' + attribute
  };

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  int Insert(int index, const QString& userData);  // -1 appends; returns the index
  bool Remove(int index);
  void Clear();
  int Find(const QString& userData) const;
  const Row* RowAt(int index) const;
  void SetValue(int index, const RowSlot& slot, const QString& value);
  QString Value(int index, const RowSlot& slot) const;
  // Every slot any row has set: binding a row resets the others' values.
  const std::vector<RowSlot>& Slots() const { return slots_; }
  // The control whose text names a row for screen readers.
  void SetNameControl(const QString& control) { nameControl_ = control; }

  // Changes between BeginBatch and EndBatch reach the view once.
  void BeginBatch();
  void EndBatch();

  static QString Key(const RowSlot& slot) { return slot.control + u'\n' + slot.attribute; }

 private:
  void Reindex(int from);
  void Changed(int index);

  std::vector<Row> rows_;
  std::unordered_map<std::u16string, int> index_;  // user data -> first row with it
  std::vector<RowSlot> slots_;
  QString nameControl_;
  int batch_ = 0;
  bool batchDirty_ = false;
};

class RowListView : public QListView {
  Q_OBJECT
 public:
  explicit RowListView(QWidget* parent = nullptr);

  RowModel* rows() const { return model_; }
  // Builds the stamp from a template skin (read once per process by the
  // loader's cache). Every row is `rowHeight` high.
  bool SetTemplate(const QString& skinFolder, const QString& skinFile, int rowHeight);
  int RowHeight() const { return rowHeight_; }
  QWidget* Stamp() const { return stamp_; }

  // The stamp dressed as `row` and laid out at `width`; null without a
  // template or for a row that does not exist.
  QWidget* BindStamp(int row, int width);
  // The deepest named template control at a point of the viewport, with the
  // stamp bound to the row there; null between rows.
  QWidget* ControlAt(QPoint viewportPos);
  // The row the stamp was last bound to (-1: none).
  int BoundRow() const { return boundRow_; }

 signals:
  void controlClicked(QWidget* control);  // a button of a row
  void itemClicked(QWidget* item);        // the row itself (the stamp's root)

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  RowModel* model_;
  QWidget* stamp_ = nullptr;
  QHash<QString, QWidget*> stampControls_;
  int rowHeight_ = 40;
  int boundRow_ = -1;
};

// The row view whose viewport `widget` is, or null.
RowListView* RowListOfViewport(QWidget* widget);
// The control under a point of `widget`: a row's template control when the
// widget is a row list's viewport, else the nearest named control.
QWidget* ControlUnder(QWidget* widget, QPoint localPos);

}  // namespace ui::qt

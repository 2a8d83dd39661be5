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
#include <QListView>
#include <QString>

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/strings.h"

namespace ui::qt {

class RowModel : public QAbstractListModel {
  Q_OBJECT
 public:
  // A value slot of every row: a template control and one of its attributes
  // ("text", "userdata", "normalimage", ...).
  struct Slot {
    std::string control;
    std::string attribute;
  };
  struct Row {
    WString userData;
    std::vector<WString> values;  // by slot number; missing = empty
    bool filled = false;          // the filler has produced the values
  };
  // Produces the values of a row (through the list's setters).
  using Filler = std::function<void(int index)>;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  int Insert(int index, const WString& userData);  // -1 appends; returns the index
  bool Remove(int index);
  void Clear();
  int Find(const WString& userData) const;
  const Row* RowAt(int index) const;

  // The slot's number, registered on first use.
  int SlotOf(std::string_view control, std::string_view attribute);
  const std::vector<Slot>& Slots() const { return slots_; }
  // With a filler, a row's values are produced when the row is first
  // painted, read or changed, not when it is added: a rebuild of hundreds of
  // rows then costs only the rows in view.
  void SetFiller(Filler filler) { filler_ = std::move(filler); }
  void Fill(int index);
  void SetValue(int index, int slot, const WString& value);
  const WString& Value(int index, int slot);
  // The control whose text names a row for screen readers.
  void SetNameControl(std::string_view control) { nameSlot_ = SlotOf(control, "text"); }

  // Changes between BeginBatch and EndBatch reach the view once.
  void BeginBatch();
  void EndBatch();

 private:
  void Reindex(int from);
  void Changed(int index);
  static std::array<int, 61> MakeNoHints() {
    std::array<int, 61> hints;
    hints.fill(-1);
    return hints;
  }

  std::vector<Row> rows_;
  std::unordered_map<WString, int> index_;  // user data -> first row with it
  std::vector<Slot> slots_;
  std::array<int, 61> slotHints_ = MakeNoHints();
  int nameSlot_ = -1;
  int batch_ = 0;
  Filler filler_;
  int filling_ = -1;  // the row the filler is producing (no change signals)
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
  // Per slot: the stamp's control and the value it shows now.
  std::vector<QWidget*> slotTargets_;
  std::vector<WString> shown_;
  int rowHeight_ = 40;
  int boundRow_ = -1;
};

// The row view whose viewport `widget` is, or null.
RowListView* RowListOfViewport(QWidget* widget);
// The control under a point of `widget`: a row's template control when the
// widget is a row list's viewport, else the nearest named control.
QWidget* ControlUnder(QWidget* widget, QPoint localPos);

}  // namespace ui::qt

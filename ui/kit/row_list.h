#pragma once
// Long lists kept as rows of data ("ImRowList" in skins). A row is a user
// data text plus values for the named controls of the list's row template
// (the skin's vocabulary: "text", "userdata", "normalimage", ...). Only the
// rows on screen are drawn, so hundreds of rows cost records, not widgets.
//
// Finding a row by its user data takes constant time. Changes made inside a
// Batch reach the screen once, at its end. With a filler, a row's values are
// made when the row is first painted, read or changed, so a rebuild costs
// the rows' user data and the rows in view.

#include <functional>
#include <string_view>

#include "platform/strings.h"
#include "ui/kit/control.h"
#include "ui/kit/list_batch.h"

namespace ui {

class RowList {
 public:
  RowList() = default;
  // Empty (false) when `list` is not a row list.
  explicit RowList(const Control& list);

  explicit operator bool() const;
  const Control& control() const { return list_; }

  // The template skin (relative to the skin folder) whose named controls the
  // rows fill; each row is `rowHeight` pixels high. False when it cannot be
  // loaded.
  bool SetTemplate(std::string_view skinFile, int rowHeight);
  // The template control whose text names a row for screen readers.
  void SetNameControl(std::string_view control);
  // Makes a row's values (with Set) the first time they are needed; rows
  // added afterwards start without values. Every reader sees the values the
  // filler makes, as if they had been set when the row was added.
  void SetFiller(std::function<void(int row)> filler);

  int Count() const;
  // Adds a row at `index` (-1: at the end); returns its index.
  int Add(const WString& userData, int index = -1);
  bool Remove(int row);
  void RemoveAll();
  // The first row with this user data, or -1.
  int Find(const WString& userData) const;
  WString UserData(int row) const;

  // One attribute of one template control of one row.
  void Set(int row, std::string_view control, std::string_view attribute, const WString& value);
  void SetText(int row, std::string_view control, const WString& text) {
    Set(row, control, "text", text);
  }
  WString Get(int row, std::string_view control, std::string_view attribute) const;

  // The highlighted row (-1: none); the list does not scroll to it.
  void Select(int row);
  int GetCurSel() const;
  // The row a control of the template belongs to while a notification about
  // it runs; -1 for controls of other lists.
  int RowOf(const Control& control) const;

  // Changes inside a batch reach the screen once, when the last batch ends.
  using Batch = ListBatch;

 private:
  Control list_;
};

}  // namespace ui

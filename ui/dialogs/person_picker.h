#pragma once
// The list of people a member picker offers ("GroupPickerItem.xml" rows in
// an ImRowList): picture, name, "群主" beside the owner, and a check box.
// A click on a row or its box picks or unpicks the person; in single mode
// picking one unpicks the other. Also the group panel's member list (no box).

#include <set>
#include <vector>

#include "service/panes/group_source.h"
#include "ui/kit/notify.h"
#include "ui/kit/row_list.h"

namespace ui {

class PersonPicker {
 public:
  enum class Mode {
    kMany,  // any number
    kOne,   // at most one
    kNone,  // a plain list: nothing is picked
  };
  static constexpr int kRowHeight = 52;
  static constexpr const char* kTemplate = "GroupPickerItem.xml";

  // After the dialog's skin is built. False (traced) without a row list.
  bool SetUp(const Control& list, Mode mode);
  void Fill(std::vector<service::GroupPerson> people);
  // Picks `id`; a fixed person stays picked (the peer of a one-to-one chat).
  void Pick(const WString& id, bool fixed = false);
  // A notification from the dialog: a click on a row or its box toggles it.
  // Returns the row's person id when it was one of the list's rows.
  const service::GroupPerson* OnNotify(const TNotifyUI& msg);

  std::vector<service::GroupPerson> Chosen() const;
  size_t ChosenCount() const { return chosen_.size(); }
  const std::vector<service::GroupPerson>& People() const { return people_; }
  RowList& rows() { return rows_; }

 private:
  void Toggle(int row);
  void ShowCheck(int row);

  RowList rows_;
  Mode mode_ = Mode::kMany;
  std::vector<service::GroupPerson> people_;
  std::set<WString> chosen_;
  std::set<WString> fixed_;
};

}  // namespace ui

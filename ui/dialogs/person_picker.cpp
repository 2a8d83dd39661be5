#include "ui/dialogs/person_picker.h"

#include "platform/trace.h"

namespace ui {
namespace {

constexpr std::string_view kCheck = "GroupPicker_Check";
constexpr std::string_view kImage = "GroupPicker_Img";
constexpr std::string_view kName = "GroupPicker_Name";
constexpr std::string_view kRole = "GroupPicker_Role";

}  // namespace

bool PersonPicker::SetUp(const Control& list, Mode mode) {
  mode_ = mode;
  rows_ = RowList(list);
  if (!rows_ || !rows_.SetTemplate(kTemplate, kRowHeight)) {
    platform::Trace("PersonPicker: %s has no rows of %s", list.GetName().c_str(), kTemplate);
    return false;
  }
  rows_.SetNameControl(kName);
  return true;
}

void PersonPicker::Fill(std::vector<service::GroupPerson> people) {
  people_ = std::move(people);
  std::set<WString> still;
  for (const service::GroupPerson& person : people_) {
    if (chosen_.count(person.id) != 0) still.insert(person.id);
  }
  chosen_ = std::move(still);
  if (!rows_) return;
  RowList::Batch batch(rows_);
  rows_.RemoveAll();
  for (const service::GroupPerson& person : people_) {
    int row = rows_.Add(person.id);
    rows_.Set(row, kImage, "bkimage", person.picture);
    rows_.SetText(row, kName, person.name);
    rows_.SetText(row, kRole, person.owner ? u"群主" : u"");
    rows_.Set(row, kCheck, "visible", mode_ == Mode::kNone ? u"false" : u"true");
    ShowCheck(row);
  }
}

void PersonPicker::Pick(const WString& id, bool fixed) {
  if (mode_ == Mode::kNone) return;
  if (mode_ == Mode::kOne) chosen_.clear();
  chosen_.insert(id);
  if (fixed) fixed_.insert(id);
  for (int row = 0; row < rows_.Count(); ++row) ShowCheck(row);
}

const service::GroupPerson* PersonPicker::OnNotify(const TNotifyUI& msg) {
  if (msg.sType != kNotifyClick && msg.sType != kNotifyItemClick) return nullptr;
  int row = rows_.RowOf(msg.pSender);
  if (row < 0 || row >= static_cast<int>(people_.size())) return nullptr;
  Toggle(row);
  return &people_[static_cast<size_t>(row)];
}

void PersonPicker::Toggle(int row) {
  if (mode_ == Mode::kNone) return;
  const WString& id = people_[static_cast<size_t>(row)].id;
  if (fixed_.count(id) != 0) return;
  if (chosen_.count(id) != 0) {
    chosen_.erase(id);
    ShowCheck(row);
    return;
  }
  Pick(id);
}

void PersonPicker::ShowCheck(int row) {
  bool picked = chosen_.count(rows_.UserData(row)) != 0;
  rows_.SetText(row, kCheck, picked ? u"√" : u"");
  rows_.Set(row, kCheck, "bkcolor", picked ? u"#FF5DC8CD" : u"#FFE1E4E8");
}

std::vector<service::GroupPerson> PersonPicker::Chosen() const {
  std::vector<service::GroupPerson> chosen;
  for (const service::GroupPerson& person : people_) {
    if (chosen_.count(person.id) != 0) chosen.push_back(person);
  }
  return chosen;
}

}  // namespace ui

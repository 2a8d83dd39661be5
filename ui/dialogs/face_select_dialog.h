#pragma once
// The emoticon picker (skin "Face.xml"): a popup grid of the 49 emoticons
// above the composer. A click on a cell stores the choice, posts
// kEmoticonChosen (3153) to the owner and closes the picker; the owner reads
// the choice and clears it. Losing the focus closes the picker too.
//
// The object is kept by its opener (the composer), so the choice outlives
// the window until the owner has read it.

#include <string>

#include "platform/strings.h"
#include "ui/kit/window_impl_base.h"

class CFaceSelectDialog final : public ui::WindowImplBase {
 public:
  CFaceSelectDialog() = default;
  ~CFaceSelectDialog() override;

  // Creates the popup owned by `owner` with its bottom-left corner at the
  // screen point and shows it. False when the skin cannot be loaded.
  bool Open(ui::WindowImplBase& owner, ui::Point bottomLeft);

  // The stored choice: the image's path, the emoticon's code ("[微笑]") and
  // its index; -1 and empty when none.
  const WString& ChosenPath() const { return path_; }
  const WString& ChosenCode() const { return code_; }
  int ChosenIndex() const { return index_; }
  bool HasChoice() const { return index_ != -1 && !path_.empty(); }
  void ClearChoice();

 protected:
  std::string GetWindowClassName() const override { return "CFaceSelectDialog"; }
  std::string GetSkinFile() const override { return "Face.xml"; }
  void Notify(ui::TNotifyUI& msg) override;
  ui::LRESULT OnKillFocus(unsigned uMsg, ui::WPARAM wParam, ui::LPARAM lParam,
                          bool& bHandled) override;

 private:
  void Choose(const std::string& cellName);

  WString path_;
  WString code_;
  int index_ = -1;
};

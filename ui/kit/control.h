#pragma once
// A handle to one control of a loaded skin. Handles are cheap to copy and
// never dangle: once the control is gone every call is a no-op returning an
// empty value, and the handle compares false.

#include <memory>
#include <string>
#include <string_view>

#include "platform/strings.h"

namespace ui {

struct Point {
  int x = 0;
  int y = 0;
};

struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
};

struct ControlRef;  // kit-internal

class Control {
 public:
  Control() = default;
  explicit Control(std::shared_ptr<ControlRef> ref);

  explicit operator bool() const { return IsValid(); }
  bool IsValid() const;
  // Same underlying control.
  bool operator==(const Control& other) const;

  std::string GetName() const;
  void SetName(std::string_view name);

  WString GetText() const;
  void SetText(const WString& text);
  WString GetToolTip() const;
  void SetToolTip(const WString& text);

  bool IsVisible() const;  // its own flag, whatever its ancestors do
  void SetVisible(bool visible);
  bool IsEnabled() const;
  void SetEnabled(bool enabled);
  void SetFocus();
  bool IsFocused() const;

  WString GetUserData() const;
  void SetUserData(const WString& data);

  // The skin attribute vocabulary: "text", "tooltip", "visible", "enabled",
  // "bkcolor", "textcolor", "normalimage", "hotimage", "pushedimage", "mouse",
  // "userdata", "width", "height", "inset". Values are as they would appear in
  // a skin file. Unknown names and malformed values are traced and ignored;
  // the return value says whether the attribute was applied.
  bool SetAttribute(std::string_view name, const WString& value);
  bool SetAttribute(std::string_view name, std::string_view utf8Value);
  // The last value set through SetAttribute (empty if never set).
  WString GetAttribute(std::string_view name) const;

  void SetFixedHeight(int height);
  void SetFixedWidth(int width);
  int GetFixedHeight() const;  // 0 when not fixed
  // Position relative to the window's client area.
  Rect GetPos() const;

  Control GetParent() const;  // nearest ancestor control, empty at the window root
  // True when `ancestor` is this control or contains it.
  bool IsInside(const Control& ancestor) const;
  // First control named `name` inside this one (this one included).
  Control FindSubControl(std::string_view name) const;

  // Options (checkable buttons).
  bool IsSelected() const;
  void Selected(bool selected, bool sendEvent = true);

  // Tab layouts (stacked pages).
  bool SelectItem(int index);
  int GetCurSel() const;  // -1 when not a tab layout
  int GetPageCount() const;

  // Vertical lists built of template items. Add takes ownership of the item;
  // it returns false (and leaves the item with the caller) when this control
  // is not a list.
  bool Add(const Control& item);
  bool AddAt(const Control& item, int index);
  bool Remove(const Control& item);  // deletes the item
  void RemoveAll();                  // deletes every item
  int GetCount() const;
  Control GetItemAt(int index) const;
  int GetItemIndex(const Control& item) const;
  void SetChildPadding(int pixels);  // gap between items
  // Vertical scrolling of lists and scrollable controls.
  int GetScrollPos() const;
  int GetScrollRange() const;
  void SetScrollPos(int pos);

  // Edits and rich edits.
  void SetSelAll();
  void SetReadOnly(bool readOnly);
  // The clipboard's text inserted as plain text at the caret (pictures and
  // formatting are left out), and cutting the selection.
  void PasteText();
  void Cut();

  // Deletes a control that no one else owns (a template item never added).
  void Delete();

  const std::shared_ptr<ControlRef>& ref() const { return ref_; }

 private:
  std::shared_ptr<ControlRef> ref_;
};

}  // namespace ui

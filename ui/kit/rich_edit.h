#pragma once
// The operations of a rich edit beyond plain text: embedded images (an
// emoticon that reads back as its text, or a picture that reads back as its
// file), cutting, and pasting that keeps only text and pictures.

#include <vector>

#include "platform/strings.h"
#include "ui/kit/control.h"

namespace ui {

struct RichPiece {
  enum Kind { kText, kPicture };
  Kind kind = kText;
  WString value;  // the text (embedded objects as their text), or the picture's path

  bool operator==(const RichPiece&) const = default;
};

class RichEdit {
 public:
  RichEdit() = default;
  // Empty when the control is not a rich edit.
  explicit RichEdit(const Control& control);

  explicit operator bool() const;
  const Control& control() const { return control_; }

  // Inserts the image file at the cursor. With `objectText` the image is an
  // embedded object that reads back as that text; without, it is a picture.
  // False when the file cannot be read as an image.
  bool InsertImage(const WString& path, const WString& objectText = {});
  // The content in order: runs of text and the pictures between them.
  std::vector<RichPiece> GetContent() const;
  void EmptyEdit();
  void Cut();
  // Pastes the clipboard: text (rich text arrives as plain text) and
  // pictures only. A picture that is no file is first written as PNG into
  // the paste folder (the system's temporary folder when none is set).
  void PasteSpecial();
  void SetPasteFolder(const WString& folder);

 private:
  Control control_;
};

}  // namespace ui

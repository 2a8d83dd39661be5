#pragma once
// The 49 emoticons of the chat: the code that stands for each in a sent
// message ("[微笑]"), its display form (/f["微笑"]) and the picker code
// ("[Smile]") that the composer yields for an inserted emoticon image. The
// picker code without its brackets is also the image's file name in
// DuiLibRes/emoji ("Smile.png"). Shared by the composer and the message view;
// no toolkit here.

#include <cstddef>
#include <span>
#include <vector>

#include "platform/strings.h"

namespace ui::rules {

struct Emoticon {
  int index = 0;
  WString code;         // "[微笑]"
  WString displayForm;  // /f["微笑"]
  WString pickerCode;   // "[Smile]"

  // "Smile": the picker code without brackets, the image's base name.
  WString ImageName() const;
};

inline constexpr size_t kEmoticonCount = 49;

// Built on first use (thread-safe), then only read.
std::span<const Emoticon> EmoticonTable();

// Exact lookups; null when nothing matches.
const Emoticon* FindByPickerCode(std::u16string_view pickerCode);
const Emoticon* FindByImageName(std::u16string_view imageName);
const Emoticon* FindByCode(std::u16string_view code);

// Every picker code in `text` replaced by its code, entry by entry in index
// order ("Hi [Smile]" becomes "Hi [微笑]"). Names are matched literally and
// with their letter case.
WString PickerCodesToCodes(WString text);

// A piece of a received text as it is shown: plain text, or one emoticon.
struct TextPiece {
  WString text;                        // the text, or the emoticon's code
  const Emoticon* emoticon = nullptr;  // set for an emoticon
};

// Splits a received text at its emoticon codes; codes not in the table stay
// text.
std::vector<TextPiece> SplitEmoticons(const WString& text);

}  // namespace ui::rules

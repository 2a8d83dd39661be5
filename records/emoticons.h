#pragma once
// The 49 emoticons: the code a sent text carries ("[微笑]"), the picker's code
// ("[Smile]", whose name is also the image's: "Smile.png"). Toolkit-free so
// that the composer and the message view share one table.

#include <array>
#include <string_view>
#include <vector>

#include "platform/strings.h"

namespace records {

struct Emoticon {
  std::u16string_view code;        // "[微笑]"
  std::u16string_view pickerCode;  // "[Smile]"
};

inline constexpr size_t kEmoticonCount = 49;
const std::array<Emoticon, kEmoticonCount>& EmoticonTable();

// The picker's name without brackets ("Smile"): the image is "<name>.png".
WString EmoticonImageName(const Emoticon& emoticon);

// A piece of a text as it is shown: plain text, or one emoticon.
struct TextPiece {
  WString text;                        // the text, or the emoticon's code
  const Emoticon* emoticon = nullptr;  // set for an emoticon
};

// Splits a received text at its emoticon codes; codes not in the table stay
// text.
std::vector<TextPiece> SplitEmoticons(const WString& text);

}  // namespace records

#pragma once
// From what the composer holds to what is sent: text runs (emoticons already
// as their picker codes) and pictures (pasted or dropped into the composer),
// in the order the user put them there.

#include <optional>
#include <vector>

#include "platform/strings.h"
#include "ui/rules/send_limits.h"

namespace ui::rules {

struct Outgoing {
  enum Kind { kText, kPicture };
  Kind kind = kText;
  WString value;  // the text, or the picture's path

  bool operator==(const Outgoing&) const = default;
};

// Picker codes become codes, runs of spaces only are dropped (other white
// space is content), and the line breaks that merely separate a text from a
// picture beside it go, so that "picture, Enter, picture" sends no empty line.
std::vector<Outgoing> PrepareOutgoing(const std::vector<Outgoing>& composed);

// The first refusal among the items (a text naming a large file, a busy or
// too large picture), or nullopt when everything may go. Nothing is sent
// when anything is refused.
std::optional<Refusal> CheckOutgoing(const std::vector<Outgoing>& items);

}  // namespace ui::rules

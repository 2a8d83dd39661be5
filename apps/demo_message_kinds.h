#pragma once
// The headless run's look at the message view: the conversation with 王工
// holding every kind of message.

#include <string>

namespace demo {

// Opens the conversation with 王工, has him send a text with emoticons, a
// picture, a file, a drawing and a notice, lets one of the user's sends
// fail, and saves the window, made tall enough for the whole conversation,
// as "message-view.png" in `dataRoot`. Returns
// the screenshot's path, or "" when a step failed (it says which).
std::string ShowEveryMessageKind(const std::string& dataRoot);

// Draws a small floor plan into "一层平面图.png" in `dataRoot`; its path,
// or "" when it could not be saved.
std::string MakeFloorPlanPicture(const std::string& dataRoot);

}  // namespace demo

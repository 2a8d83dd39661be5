#pragma once
// The headless run: a short script that exercises the loaded module end to
// end and reports what happened.

#include <string>
#include <vector>

#include "apps/demo_world.h"
#include "module/module_library.h"

class QWidget;

namespace demo {

struct ScriptResult {
  bool ok = false;
  std::vector<std::string> screenshots;  // the chat window first, then its dialogs
};

// Runs with the user signed in and the chat window shown. Prints each step.
ScriptResult RunHeadlessScript(im_exports::ModuleLibrary& module, host::local::LocalHost& host,
                               const World& world, const std::string& dataRoot);

// The module's chat window among the application's top-level windows.
QWidget* FindChatWindow();

// The user opens the chat with 王工, types `text`, adds the emoticon "微笑"
// from the picker and presses Enter; true when Enter was pressed.
bool TypeAndSend(const std::string& text);

// Messages in the user's Chat.db (-1 when it cannot be read).
int StoredMessageCount(const std::string& dbPath);

}  // namespace demo

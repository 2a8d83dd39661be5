#pragma once
// The drawing part of the headless run: 张明 sends a drawing open in the host
// to the group through the drawing selection dialog (uploaded to the group's
// cloud space behind the wait window), looks at the group's space, starts a
// shared chat on the drawing, 王工 joins and writes, the host's window shows
// the session, and 张明 leaves it again. Screenshots of every window.

#include <string>
#include <vector>

#include "apps/demo_world.h"

namespace demo {

// Puts a drawing file on disk and tells the host it has it open.
void OpenDrawingInHost(host::local::LocalHost& host, const std::string& dataRoot);

bool RunDrawingScript(host::local::LocalHost& host, const World& world, const std::string& dataRoot,
                      std::vector<std::string>& shots);

}  // namespace demo

#pragma once
// Where the skin resources (the DuiLibRes folder) live. By default beside the
// executable, like the host's; tests and tools point it elsewhere.

#include <string>
#include <string_view>

namespace ui {

// The folder that holds "DuiLibRes" (UTF-8). Empty resets to the default.
void SetResourceRoot(std::string_view folder);
std::string GetResourceRoot();
// A skin folder as windows name it ("DuiLibRes\skin\") made into a path
// under the resource root, ending without a slash.
std::string ResourcePath(std::string_view relative);

}  // namespace ui

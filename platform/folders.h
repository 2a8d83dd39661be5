#pragma once
// File-system places the module needs, as UTF-16 paths joined with the
// platform's separator.

#include <string>

#include "platform/strings.h"

namespace platform {

inline constexpr char16_t kPathSeparator = u'/';

// a + separator + b (no separator doubled).
WString JoinPath(const WString& a, const WString& b);

// Folder of the host process's executable. IM_MODULE_DIR overrides it, so
// that tests and tools can point at a resource tree of their choice.
WString ExecutableFolder();

// The common (all users) documents folder: $IM_COMMON_DOCS_DIR when set,
// else $XDG_DATA_HOME (default ~/.local/share), which an ordinary user can
// write. Not created here.
WString CommonDocumentsFolder();

// Creates the folder and its missing parents; true when it exists afterwards.
bool CreateFolders(const WString& path);
bool FolderExists(const WString& path);

// The byte path the OS takes (UTF-8 on POSIX).
std::string ToNativePath(const WString& path);

}  // namespace platform

#pragma once
// The MD5 digest of a file, as the drawing payload's fileMd5 carries it
// (32 lower-case hex digits). Reads the file in blocks.

#include <optional>
#include <string>

#include "platform/strings.h"

namespace service::drawings {

// None when the file cannot be read.
std::optional<std::string> FileMd5(const WString& path);
// The digest of bytes in memory.
std::string Md5Hex(const std::string& bytes);

}  // namespace service::drawings

#include "platform/folders.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/trace.h"

namespace platform {

WString JoinPath(const WString& a, const WString& b) {
  if (a.empty()) return b;
  if (a.back() == kPathSeparator) return a + b;
  return a + kPathSeparator + b;
}

WString ExecutableFolder() {
  const char* override_dir = std::getenv("IM_MODULE_DIR");
  if (override_dir && *override_dir) return Utf8ToUtf16(override_dir);
  std::error_code ec;
  std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return {};
  return Utf8ToUtf16(exe.parent_path().string());
}

WString CommonDocumentsFolder() {
  const char* docs = std::getenv("IM_COMMON_DOCS_DIR");
  if (docs && *docs) return Utf8ToUtf16(docs);
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data && *data) return Utf8ToUtf16(data);
  const char* home = std::getenv("HOME");
  return Utf8ToUtf16(std::string(home && *home ? home : "/tmp") + "/.local/share");
}

bool CreateFolders(const WString& path) {
  if (path.empty()) return false;
  std::error_code ec;
  std::filesystem::create_directories(ToNativePath(path), ec);
  if (ec) Trace("CreateFolders failed: %s (%s)", ToNativePath(path).c_str(), ec.message().c_str());
  return FolderExists(path);
}

bool FolderExists(const WString& path) {
  std::error_code ec;
  return std::filesystem::is_directory(ToNativePath(path), ec);
}

std::string ToNativePath(const WString& path) {
  return Utf16ToUtf8(path);
}

}  // namespace platform

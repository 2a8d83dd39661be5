#include "platform/settings_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <json/json.h>

#include "platform/json_text.h"
#include "platform/trace.h"

namespace platform {
namespace {

std::string DefaultRoot() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  std::string base;
  if (config && *config) {
    base = config;
  } else {
    const char* home = std::getenv("HOME");
    base = std::string(home && *home ? home : "/tmp") + "/.config";
  }
  return base + "/im-chat-registry";
}

// The whole file as a JSON object; anything else is an empty object.
Json::Value LoadObject(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return Json::Value(Json::objectValue);
  std::stringstream buffer;
  buffer << in.rdbuf();
  Json::Value root;
  if (!ParseJsonText(buffer.str(), root) || !root.isObject()) {
    Trace("SettingsStore: ignoring unreadable settings file %s", file.c_str());
    return Json::Value(Json::objectValue);
  }
  return root;
}

bool WriteAtomically(const std::string& file, const std::string& text) {
  std::error_code ec;
  std::filesystem::create_directories(std::filesystem::path(file).parent_path(), ec);
  std::string temp = file + ".XXXXXX";
  int fd = mkstemp(temp.data());
  if (fd < 0) return false;
  bool ok = true;
  size_t written = 0;
  while (ok && written < text.size()) {
    ssize_t n = write(fd, text.data() + written, text.size() - written);
    if (n < 0 && errno == EINTR) continue;
    ok = n > 0;
    if (ok) written += static_cast<size_t>(n);
  }
  ok = ok && fsync(fd) == 0;
  ok = close(fd) == 0 && ok;
  ok = ok && rename(temp.c_str(), file.c_str()) == 0;
  if (!ok) {
    unlink(temp.c_str());
    Trace("SettingsStore: cannot write %s", file.c_str());
  }
  return ok;
}

}  // namespace

FileSettingsStore::FileSettingsStore(std::string root) : root_(std::move(root)) {}

std::string FileSettingsStore::FileFor(const WString& key) const {
  std::string path = Utf16ToUtf8(key);
  for (char& c : path) {
    if (c == '\\') c = '/';
  }
  return (root_.empty() ? DefaultRoot() : root_) + "/" + path + ".json";
}

std::optional<WString> FileSettingsStore::ReadString(const WString& key,
                                                     const WString& name) const {
  Json::Value root = LoadObject(FileFor(key));
  const std::string member = Utf16ToUtf8(name);
  const Json::Value* found = root.find(member.data(), member.data() + member.size());
  if (!found || !found->isString()) return std::nullopt;
  return Utf8ToUtf16(found->asString());
}

bool FileSettingsStore::WriteString(const WString& key, const WString& name, const WString& value) {
  const std::string file = FileFor(key);
  Json::Value root = LoadObject(file);
  root[Utf16ToUtf8(name)] = Utf16ToUtf8(value);
  Json::StreamWriterBuilder writer;
  return WriteAtomically(file, Json::writeString(writer, root) + "\n");
}

SettingsStore& UserSettings() {
  static FileSettingsStore* store = new FileSettingsStore;
  return *store;
}

}  // namespace platform

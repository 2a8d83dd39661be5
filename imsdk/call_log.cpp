#include "imsdk/call_log.h"

#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>

#include "imsdk/json_util.h"

namespace imsdk {
namespace {

std::mutex& LogMutex() {
  static std::mutex mutex;
  return mutex;
}

const char* LogPath() {
  const char* path = std::getenv("IMSDK_CALL_LOG");
  return (path != nullptr && *path != '\0') ? path : nullptr;
}

void Append(const Json::Value& line) {
  const char* path = LogPath();
  if (path == nullptr) return;
  std::string text = WriteJson(line);
  std::lock_guard lock(LogMutex());
  std::ofstream out(path, std::ios::app | std::ios::binary);
  out << text << '\n';
}

}  // namespace

bool CallLogEnabled() {
  return LogPath() != nullptr;
}

void LogCall(const char* function, const Json::Value& params) {
  if (!CallLogEnabled()) return;
  Json::Value line;
  line["call"] = function;
  line["params"] = params;
  Append(line);
}

void LogCallback(const char* name, Json::Value payload) {
  if (!CallLogEnabled()) return;
  payload["callback"] = name;
  Append(payload);
}

}  // namespace imsdk

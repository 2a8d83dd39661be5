#include "service/parts/downloads.h"

#include <json/json.h>

#include <memory>

#include "platform/json_text.h"
#include "records/message_records.h"

namespace service {
namespace {

bool ParseObject(std::string_view text, Json::Value& out) {
  return platform::ParseJsonText(text, out) && out.isObject();
}

uint64_t SizeOf(const Json::Value& value) {
  return value.isUInt64() ? value.asUInt64() : 0;
}

}  // namespace

void Downloads::Clear() {
  std::lock_guard lock(mutex_);
  downloads_.clear();
}

void Downloads::Start(uint64_t key, DownloadState state) {
  std::lock_guard lock(mutex_);
  downloads_[key] = std::move(state);
}

std::optional<DownloadState> Downloads::Find(uint64_t key) const {
  std::lock_guard lock(mutex_);
  auto it = downloads_.find(key);
  if (it == downloads_.end()) return std::nullopt;
  return it->second;
}

std::optional<bool> Downloads::Complete(uint64_t key, std::string_view resultJson) {
  Json::Value result;
  const bool parsed = ParseObject(resultJson, result);
  std::lock_guard lock(mutex_);
  auto it = downloads_.find(key);
  if (it == downloads_.end()) return std::nullopt;
  DownloadState& state = it->second;
  if (parsed) {
    state.current_size = SizeOf(result["msg_download_elem_result_current_size"]);
    state.total_size = SizeOf(result["msg_download_elem_result_total_size"]);
  }
  state.downloaded = 1;
  if (state.elem_type == kElemVideo) state.secondary_status = state.downloaded;
  return state.elem_type == kElemImage ||
         (state.elem_type == kElemVideo && state.secondary_status != 2);
}

}  // namespace service

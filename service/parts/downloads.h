#pragma once
// Element downloads by request key: what was asked and how far it got.
// One lock, held only inside these calls.

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "service/service_records.h"

namespace service {

class Downloads {
 public:
  void Clear();
  void Start(uint64_t key, DownloadState state);
  std::optional<DownloadState> Find(uint64_t key) const;
  // A successful result (the SDK's JSON with the sizes): the entry is marked
  // downloaded. Returns whether the window should wait a moment before it
  // loads the file (pictures), none when the key is unknown.
  std::optional<bool> Complete(uint64_t key, std::string_view resultJson);

 private:
  mutable std::mutex mutex_;
  std::map<uint64_t, DownloadState> downloads_;
};

}  // namespace service

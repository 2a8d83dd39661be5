#pragma once
// Small helpers shared by the fuzz targets.

#include <json/json.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <unistd.h>

#include "platform/json_text.h"

namespace fuzz {

inline std::string_view AsText(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Keeps the optimiser from dropping a result the target computed.
inline void Keep(size_t value) {
  volatile size_t sink = value;
  (void)sink;
}

// Runs `parse(value)` on the parsed text and, when it is an array, on each
// of its entries, as the single-record parsers meet them.
template <typename Parse>
void ForRootAndEntries(std::string_view text, Parse parse) {
  Json::Value root;
  if (!platform::ParseJsonText(text, root)) return;
  parse(root);
  if (!root.isArray()) return;
  for (const Json::Value& entry : root) parse(entry);
}

// A file of this process that each input overwrites, for readers of files.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& name)
      : path_("/tmp/" + name + "-" + std::to_string(getpid())) {}
  ~ScratchFile() { std::remove(path_.c_str()); }
  const std::string& Write(std::string_view bytes) const {
    if (FILE* f = std::fopen(path_.c_str(), "wb")) {
      std::fwrite(bytes.data(), 1, bytes.size(), f);
      std::fclose(f);
    }
    return path_;
  }

 private:
  std::string path_;
};

}  // namespace fuzz

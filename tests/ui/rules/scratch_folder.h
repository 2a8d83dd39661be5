#pragma once
// A private folder for one test, with sparse files of any size in it.

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/strings.h"

namespace ui::test {

class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& tag)
      : dir_(std::filesystem::temp_directory_path() /
             ("im-" + tag + "-" + std::to_string(::getpid()))) {
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
  }
  ~ScratchFolder() {
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return dir_; }
  WString Path(const std::string& name) const { return platform::W((dir_ / name).string()); }
  // A sparse file of `size` bytes; its path.
  WString Make(const std::string& name, uint64_t size) const {
    std::ofstream(dir_ / name).close();
    std::filesystem::resize_file(dir_ / name, size);
    return Path(name);
  }

 private:
  std::filesystem::path dir_;
};

}  // namespace ui::test

// The settings store reading whatever its file holds.
#include <filesystem>

#include "fuzz/fuzz_input.h"
#include "platform/settings_store.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string root = "/tmp/fuzz-settings-" + std::to_string(getpid());
  static platform::FileSettingsStore store(root);
  // The file of the key Software\Ostrel under the store's root.
  static const std::string path = [] {
    std::filesystem::create_directories(root + "/Software");
    return root + "/Software/Ostrel.json";
  }();
  if (FILE* f = std::fopen(path.c_str(), "wb")) {
    std::fwrite(data, 1, size, f);
    std::fclose(f);
  }
  std::optional<WString> value = store.ReadString(u"Software\\Ostrel", u"DownloadPath");
  fuzz::Keep(value ? value->size() : 0);
  return 0;
}

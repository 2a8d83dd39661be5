// The embedded engine's world file: any bytes load or are refused whole.
#include "fuzz/fuzz_input.h"
#include "imsdk/engine_control.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const fuzz::ScratchFile file("fuzz-world");
  imsdk::EngineControl& engine = imsdk::EngineControl::Instance();
  const std::string error = engine.Load(file.Write(fuzz::AsText(data, size)));
  if (error.empty()) engine.Reset();
  fuzz::Keep(error.size());
  return 0;
}

// The hex text of stored rows: decoding any text, and encoding what was
// decoded gives back the same bytes.
#include <cstdlib>

#include "fuzz/fuzz_input.h"
#include "store/hex_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = fuzz::AsText(data, size);
  const std::string bytes = store::DecodeHexToUtf8(text);
  if (store::DecodeHexToUtf8(store::EncodeHexUtf8(bytes)) != bytes) std::abort();
  if (store::DecodeHexToUtf8(store::EncodeHexUtf8(text)) != text) std::abort();
  const WString wide = store::DecodeHexToText(text);
  fuzz::Keep(wide.size() + store::EncodeHexText(wide).size());
  return 0;
}

#include "host/host_texts.h"

namespace host::text {

WString Format(const char* pattern, const WString& argument) {
  WString result = platform::W(pattern);
  const size_t at = result.find(u"%s");
  if (at != WString::npos) result.replace(at, 2, argument);
  return result;
}

}  // namespace host::text

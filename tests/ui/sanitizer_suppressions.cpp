// Sanitizer defaults for the window tests. Kept empty until a report from
// inside the toolkit's own libraries needs silencing; every entry names one
// library and why.
extern "C" const char* __lsan_default_suppressions() {
  return "";
}

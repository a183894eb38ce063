// The library of the demo's servers is not built with the thread sanitizer, which therefore misses
// that the library's own statics are guarded.
extern "C" [[gnu::visibility("default")]] const char*
__tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "race:libcpp-httplib";
}

#include "tests/desktop/ratings/faulty_calls.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>

namespace {

int remaining = 0;  // calls until the one that fails; none when 0
bool isMet = false;

bool fails() {
  if (remaining == 0 || --remaining > 0) return false;
  errno = EIO;
  return isMet = true;
}

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

namespace tests {

void failCall(int number) {
  remaining = number;
  isMet = false;
}

bool healCalls() {
  remaining = 0;
  return isMet;
}

}  // namespace tests

// In the place of the C library's.
extern "C" {

std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* file) {
  return fails() ? 0 : real<decltype(fwrite)>("fwrite")(bytes, size, count, file);
}
int fflush(FILE* file) { return fails() ? EOF : real<decltype(fflush)>("fflush")(file); }
int fsync(int file) { return fails() ? -1 : real<decltype(fsync)>("fsync")(file); }
int rename(const char* from, const char* to) noexcept {
  return fails() ? -1 : real<int(const char*, const char*)>("rename")(from, to);
}
}

// How much memory the test's process holds.
#pragma once

#include <malloc.h>

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Of the sanitizers' run-time library; not every compiler installs the header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace tests {

/// The bytes allocated and not freed.
inline std::size_t allocatedBytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return ::mallinfo2().uordblks;
#endif
}

}  // namespace tests

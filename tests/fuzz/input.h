// What fuzz targets share.
#pragma once

#include <cstdlib>

#include "platform/foundation/data.h"

namespace fuzz {

inline platform::Data data(const std::uint8_t* bytes, std::size_t length) {
  return platform::Data(std::vector<std::uint8_t>(bytes, bytes + length));
}

/// Ends the program, which the fuzzer reports, unless the condition holds.
inline void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length);

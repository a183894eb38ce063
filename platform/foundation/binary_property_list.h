// A look at a binary property list before the library takes it apart.
#pragma once

#include <string_view>

namespace platform {

/// False for lists that no program writes and that the library cannot cope with: texts with a
/// zero character end the whole program, and containers that are referred to more than once,
/// which a few bytes can nest, are unrolled without end. Also false when containers lie deeper in
/// one another than `deepest`, or when an object does not fit the bytes.
bool isSoundBinaryPropertyList(std::string_view bytes, int deepest);

}  // namespace platform

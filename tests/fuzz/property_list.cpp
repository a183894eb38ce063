#include "platform/foundation/property_list.h"

#include "tests/fuzz/input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  static_cast<void>(platform::propertyListFromData(fuzz::data(bytes, length)));
  return 0;
}

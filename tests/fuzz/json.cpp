#include "platform/foundation/json.h"

#include "platform/foundation/text.h"
#include "tests/fuzz/input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const platform::Data text = fuzz::data(bytes, length);
  const auto value = platform::jsonObjectWithData(text);
  if (!value) return 0;
  fuzz::require(platform::isValidUTF8(text.view()));
  fuzz::require(*platform::jsonObjectWithData(text) == *value);
  return 0;
}

#include "desktop/graphics/image_decoder.h"
#include "tests/fuzz/input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  constexpr int side = 64;
  const auto decoded = desktop::decodeImage(fuzz::data(bytes, length), side);
  fuzz::require(!decoded || (!decoded->pixels.isNull() && decoded->pixels.width() <= side &&
                             decoded->pixels.height() <= side && !decoded->fullSize.isEmpty()));
  return 0;
}

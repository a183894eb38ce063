#include "radio/beats1_info_loader.h"
#include "tests/fuzz/input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const platform::Data name = fuzz::data(bytes, length);
  const auto date = virelune::VLBeats1InfoLoader::trackDateFromName(name.view());
  // Every date of the four-digit years, give or take a day for the zone.
  constexpr double earliest = -62167305600;
  constexpr double latest = 253402387200;
  if (date) {
    fuzz::require(date->timeIntervalSince1970 >= earliest && date->timeIntervalSince1970 < latest);
    fuzz::require(length >= sizeof "20160305T140709Z" - 1);
  }
  return 0;
}

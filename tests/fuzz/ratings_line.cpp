#include "desktop/ratings/exchange.h"
#include "tests/fuzz/input.h"

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const auto record = desktop::recordFromLine(std::string(bytes, bytes + length));
  if (!record) {
    require(!record.problem().text.empty());
    return 0;
  }
  const int rating = record->marks.rating.value_or(0);
  require(record->marks != desktop::Marks{} && rating >= 0 && rating <= 100);
  const std::string line = desktop::lineFromRecord(*record);
  require(line.find('\n') == std::string::npos);
  const auto again = desktop::recordFromLine(line);
  require(again && desktop::lineFromRecord(*again) == line);
  return 0;
}

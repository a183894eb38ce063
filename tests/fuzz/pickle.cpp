#include "desktop/ratings/pickle.h"

#include "tests/fuzz/input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  bool isVisited = false;
  const std::string text(bytes, bytes + length);
  const bool isRead = desktop::readPickledDictionaries(
      text, [&isVisited](const desktop::PickledMembers&) { isVisited = true; });
  fuzz::require(isRead || !isVisited);
  return 0;
}

#include "platform/foundation/text.h"
#include "radio/beats1_info_loader.h"
#include "tests/fuzz/input.h"

using fuzz::require;
using virelune::VLBeats1InfoLoader;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const platform::Data head = fuzz::data(bytes, length);
  for (const char* identifier : {"TALB", "TPE1", "TIT2"}) {
    const auto range = VLBeats1InfoLoader::trackInfoBytesRangeForKey_fromData(identifier, head);
    const bool found = range.location != VLBeats1InfoLoader::BytesRange::notFound;
    require(!found || (range.location >= 10 && range.location <= length && range.length > 0));
    if (found) require(head.view().substr(range.location - 10).starts_with(identifier));
    const auto text = VLBeats1InfoLoader::trackInfoTextForKey_fromData(identifier, head);
    if (!text) continue;
    require(found && range.location + range.length <= length);
    require(!text->empty() && platform::isValidUTF8(*text));
    require(text->front() != ' ' && text->back() != ' ' && text->find('\0') == std::string::npos);
  }
  const auto address = VLBeats1InfoLoader::trackInfoArtworkWebAddressFromData(head);
  if (address) {
    require(address->starts_with("http") && address->find(".jpg") == address->size() - 4);
    require(platform::isValidUTF8(*address) && address->find('\0') == std::string::npos);
    require(head.view().find("artwork") != std::string_view::npos);
    static_cast<void>(platform::URL::fromText(*address));
  }
  return 0;
}

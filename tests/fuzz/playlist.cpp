#include <cmath>

#include "radio/beats1_info_loader.h"
#include "tests/fuzz/input.h"

using fuzz::require;
using virelune::VLBeats1InfoLoader;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const auto loader = platform::make<VLBeats1InfoLoader>();
  const platform::Data playlist = fuzz::data(bytes, length);
  require(!loader->handleReceivedDataForPlaylist(playlist));  // there is no network
  const double duration = loader->infoPlaylistDuration();
  require(std::isfinite(duration) && duration >= 0);
  const auto tracks = VLBeats1InfoLoader::playlistTracksFromText(playlist.view());
  if (!tracks) return 0;
  require(!tracks->empty());
  for (const platform::Value& track : *tracks) {
    const std::string& name = *track.get<std::string>();
    require(name.size() >= 4 && playlist.view().find(name) != std::string_view::npos);
    require(name.find_first_of("\r\n") == std::string::npos);
    static_cast<void>(VLBeats1InfoLoader::trackDateFromName(name));
    static_cast<void>(platform::URL::fromText("http://stream.example/" + name));
  }
  return 0;
}

// The demo player's tracks, all of them invented.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/application/player_dictionary.h"
#include "platform/application/player_interpreter.h"
#include "platform/foundation/data.h"

namespace demo {

using platform::player::ratedByUser;
using platform::player::ratingComputed;

/// What a listener thinks of a track or of an album.
struct Marks {
  std::int64_t rating = 0;              ///< 0…100, 20 per star
  platform::FourCharCode ratingKind{};  ///< 0: not rated
  bool loved = false;
};

struct Track : platform::PlayerTrack {
  platform::Data cover;  ///< the bytes of an image file; empty: the track has no artwork
  Marks marks;
};

// Where the library's special cases are.
inline constexpr std::size_t trackWithoutCover = 1;
inline constexpr std::size_t liveStation = 7;

/// The tracks, always the same, the live station "Beats 1" last. Covers come from the main bundle.
std::vector<Track> library();

}  // namespace demo

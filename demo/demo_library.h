// The demo player's tracks, all of them invented.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo_cover.h"
#include "platform/application/scripting.h"

namespace demo {

// Rating kinds.
inline constexpr platform::FourCharCode ratedByUser = platform::code("kRtU");
inline constexpr platform::FourCharCode ratingComputed = platform::code("kRtC");

/// What a listener thinks of a track or of an album.
struct Marks {
  std::int64_t rating = 0;              ///< 0…100, 20 per star
  platform::FourCharCode ratingKind{};  ///< kRatedByUser, kRatingComputed, 0 unknown
  bool loved = false;
};

struct Track {
  std::string name;
  std::string artist;
  std::string album;
  std::string albumArtist;
  double duration = 0;         ///< seconds; 0 when it never ends
  std::optional<Cover> cover;  ///< none: the track has no artwork
  Marks marks;
  bool isStream = false;                 ///< a network stream rather than a file
  std::string url = {};                  ///< where a stream comes from; empty for a file
  std::optional<std::string> time = {};  ///< the length as text; none: made of the duration
};

// Where the library's special cases are.
inline constexpr std::size_t plainTrack = 0;
inline constexpr std::size_t trackWithoutCover = 1;
inline constexpr std::size_t trackWithoutAlbum = 2;
inline constexpr std::size_t trackWithLongName = 3;
inline constexpr std::size_t japaneseTrack = 4;
inline constexpr std::size_t trackLongerThanAnHour = 5;
inline constexpr std::size_t liveStation = 7;

/// The tracks, always the same, the live station "Beats 1" last.
std::vector<Track> library();

}  // namespace demo

// What the store keeps: the marks of a track or an album, and what tells which one it is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "desktop/ratings/identity.h"

namespace desktop {

/// What the user has set for a track or an album.
struct Marks {
  std::optional<int> rating =
      std::nullopt;  ///< 0 to 100; none when never set, 0 when set to no stars
  std::optional<bool> loved = std::nullopt;  ///< none when never set
  bool operator==(const Marks&) const = default;
};

/// One entry of the store. An album's identity has only the album artist and the album.
struct RatingsRecord {
  enum class Kind { track, album };
  Kind kind = Kind::track;
  TrackIdentity identity = {};
  Marks marks = {};
  // When each mark was set, in seconds since 1970-01-01 00:00:00 UTC; 0 when unknown.
  std::int64_t ratingChanged = 0;
  std::int64_t lovedChanged = 0;
  bool operator==(const RatingsRecord&) const = default;
};

/// The sixteen bytes under which an entry is kept; none when it cannot be recognised again.
std::optional<std::string> digestOf(const RatingsRecord& record);

/// What a player tells, as entries keep it: well-formed texts, whole seconds, and only what the
/// digest can be made from again.
TrackIdentity storedIdentity(RatingsRecord::Kind kind, const TrackIdentity& told);

}  // namespace desktop

// The tracks that have marks, as people and players read them.
#pragma once

#include <iosfwd>

#include "desktop/ratings/store.h"
#include "desktop/result.h"

namespace desktop {

struct Listing {
  enum class Format {
    text,  ///< stars, a heart, artist and title, an album's as well
    json,  ///< as exports are
    m3u    ///< a playlist (extended M3U) of the tracks whose address is known
  };
  Format format = Format::text;
  bool lovedOnly = false;
  int minimum = 0;  ///< rating, 0 to 100
};

/// Writes the entries that are wanted, in a stable order.
Result<> listRatings(RatingsStore& store, const Listing& wanted, std::ostream& out);

}  // namespace desktop

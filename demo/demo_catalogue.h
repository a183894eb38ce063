// What the demo's station plays and its store sells.
#pragma once

#include <string>
#include <vector>

#include "platform/foundation/data.h"

namespace demo {

/// What is on air for a while.
struct Programme {
  std::string title;
  std::string artist;
  std::string album;
  platform::Data cover;  ///< the bytes of a PNG image
};

/// The station's programmes, all of them invented.
std::vector<Programme> programmes();

/// What the store has on its shelves.
struct StoreAlbum {
  std::string artist;
  std::string album;
  platform::Data cover;  ///< the bytes of a PNG image
};

/// Albums of the demo's artists, among them the one whose track has no cover in the library.
std::vector<StoreAlbum> storeAlbums();

}  // namespace demo

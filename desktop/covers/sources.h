// Where a track's cover may lie, and reading it there: addresses of files, "data:" addresses
// (RFC 2397), what came over the network, the picture in the track's file and those beside it.
#pragma once

#include <QtCore/QString>
#include <array>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/foundation/data.h"

namespace desktop {

/// The most that is read or fetched of a cover, in bytes.
inline constexpr std::size_t longestCover = 32 * 1024 * 1024;

/// A track whose cover is wanted, as far as its player tells.
struct CoverWanted {
  QString address = {};    ///< the cover's own (mpris:artUrl)
  std::string path = {};   ///< of the track's file; empty when it is not one of this machine
  std::string album = {};  ///< its title
  bool operator==(const CoverWanted&) const = default;
};

struct CoverSearch {
  const CoverWanted& wanted;
  const platform::Data& fetched;  ///< from the cover's address, if that is on the web
};

/// True when the picture will do.
using CoverAccept = std::function<bool(const platform::Data&)>;

struct CoverSource {
  /// Offers the pictures that it has, the best one first, until one is accepted. Opens regular
  /// files only. Waits for the disk; any thread.
  void (*offer)(const CoverSearch&, const CoverAccept&);
  bool mayStandIn;  ///< it may have one picture for all that has none
};

/// The first one that has an acceptable picture has the cover.
const std::array<CoverSource, 3>& coverSources();

/// Pictures that players publish for what has no cover: one content for tracks of different albums.
/// Any thread.
class StandIns {
 public:
  /// Notes that an album has this picture, and tells whether another one has it as well.
  bool isOne(const platform::Data& picture, const std::string& album);

 private:
  struct Seen {
    std::size_t hash;
    std::string album;
    bool standsIn;
  };
  std::mutex mutex_;
  std::vector<Seen> seen_;  // the one seen last at the end
};

/// The function that the module "pictures" exports under this name: puts the picture that the tags
/// of an audio file hold, the front cover before others, into `picture`. False when there is none.
/// Reads no more than a bound of bytes.
using PictureInFile = bool(const char* path, std::size_t bound, std::vector<std::uint8_t>& picture);
inline constexpr const char* pictureInFileName = "virelune_picture_in_file";

}  // namespace desktop

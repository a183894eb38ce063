// Puts a sound file with every readable entry in the place of a damaged one.
#pragma once

#include <cstdint>
#include <filesystem>

#include "desktop/ratings/file.h"
#include "desktop/ratings/rescue.h"

namespace desktop {

/// What became of a damaged file.
struct MendedFile {
  std::filesystem::path kept;  ///< its new name; empty when another process has mended it already
  std::int64_t entries = 0;    ///< carried over
  PageCounts pages;
};

/// Carries the readable entries over into a new file, which then takes the place of the damaged
/// one. Until it does, and when it cannot, the damaged one stays where it is.
Result<MendedFile> mendRatingsFile(const std::filesystem::path& file, Patience& patience,
                                   Database damaged);

/// Keeps a log whose database is missing under a name of its own, where the log of a new database
/// does not take its place. Answers the name; an empty one when there is no such log.
Result<std::filesystem::path> keepStrayLog(const std::filesystem::path& file, Patience& patience);

}  // namespace desktop

// Ratings as a text file: JSON Lines (https://jsonlines.org), one entry a line.
//
//   {"kind":"track","address":"file:///music/a.flac","artist":"A","album":"B","title":"C",
//    "length":215,"rating":80,"ratingChanged":"2026-01-31T20:15:00Z","loved":true}
//   {"kind":"album","artist":"A","album":"B","rating":100}
//
// "kind" and at least one of "rating" (0 to 100) and "loved" are required; a track needs a lasting
// address or a title, an album its name. "length" is in seconds; "ratingChanged" and
// "lovedChanged" tell when each mark was set, in UTC.
#pragma once

#include <string>
#include <string_view>

#include "desktop/ratings/store.h"
#include "desktop/result.h"

namespace desktop {

/// The entry as one line, without the line's end.
std::string lineFromRecord(const RatingsRecord& record);

/// The entry that a line holds, or what is wrong with the line.
Result<RatingsRecord> recordFromLine(std::string_view line);

// Exports and imports answer a report of one line.

/// Writes every entry of the store to a file ("-": the standard output), in a stable order. When
/// that cannot be done for all of them, a file that is there already stays as it is.
Result<std::string> exportRatings(RatingsStore& store, const std::string& file);

/// The same with what can be read of a damaged store.
Result<std::string> salvageRatings(RatingsStore& store, const std::string& file);

/// Takes the entries of a file over into the store, all or none; a bad line is named by its number.
/// The file may also be a store's that was kept, sound or damaged, or name a player's library
/// (playerLibraryNamed), whose ratings count as older than any that was set here.
Result<std::string> importRatings(RatingsStore& store, const std::string& file);

}  // namespace desktop

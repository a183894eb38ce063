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

#include <iostream>
#include <string>
#include <string_view>
#include <variant>

#include "desktop/ratings/store.h"

namespace desktop {

/// The entry as one line, without the line's end.
std::string lineFromRecord(const RatingsRecord& record);

/// The entry that a line holds, or what is wrong with the line.
std::variant<RatingsRecord, std::string> recordFromLine(std::string_view line);

/// Writes every entry of the store to a file, in a stable order, and reports how many to
/// `messages`. Answers the program's exit status.
int exportRatings(RatingsStore& store, const std::string& file, std::ostream& messages = std::cerr);

/// Takes the entries of a file over into the store, all or none, and reports counts to `report`.
/// A bad line is named by its number. Answers the program's exit status.
int importRatings(RatingsStore& store, const std::string& file, std::ostream& report = std::cout,
                  std::ostream& messages = std::cerr);

}  // namespace desktop

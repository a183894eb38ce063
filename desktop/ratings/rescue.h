// Reads entries out of a database file that SQLite cannot read any more, page by page
// (https://www.sqlite.org/fileformat2.html). Every byte may be anything.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "desktop/ratings/entries.h"
#include "desktop/result.h"

namespace desktop {

/// A row of one of the two tables: either the marks of an entry or what it is called.
struct RescuedRow {
  std::string digest;
  bool hasMarks = false;
  RatingsRecord record = {};
};

/// Bytes that can be read in any order.
struct RescueSource {
  std::int64_t length = 0;
  /// Fills the bytes from an offset on; false when they cannot be read.
  std::function<bool(std::int64_t offset, std::span<std::uint8_t> bytes)> read;
};

/// The file that lies under a name.
Result<RescueSource> rescueSourceFromFile(const std::filesystem::path& file);

/// The file that a database has open, whatever its name is by now. Must not outlive it.
RescueSource rescueSourceFromDatabase(const Database& database);

/// True for what begins as a database or as a write-ahead log does.
bool looksLikeDatabase(const RescueSource& source);

struct PageCounts {
  std::int64_t all = 0;
  std::int64_t unreadable = 0;  ///< wholly or in part
};

/// Hands out the rows that can be read in a database file, and in its write-ahead log when there is
/// one, until `visit` answers false. Older states of a row may come as well as the last one.
PageCounts rescueRows(const RescueSource& file, const RescueSource* log,
                      const std::function<bool(const RescuedRow&)>& visit);

/// Takes the rows of a file, and of the log beside it, over into a database, within a transaction:
/// of two states of an entry the later one. Answers a result code of the database.
int rescueInto(Entries& entries, const RescueSource& file, const RescueSource* log,
               MergeCounts& counts, PageCounts& pages);

/// The log that lies beside a file; none when there is none.
std::optional<RescueSource> logBeside(const std::filesystem::path& file);

}  // namespace desktop

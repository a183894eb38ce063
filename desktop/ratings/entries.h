// The entries of one open database. Operations answer SQLite's result codes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "desktop/ratings/record.h"
#include "desktop/ratings/sqlite.h"

namespace desktop {

/// What became of entries that were offered.
struct MergeCounts {
  std::int64_t added = 0;
  std::int64_t changed = 0;
  std::int64_t unchanged = 0;
};

/// Makes this version's tables in a database that has older ones or none.
int makeEntryTables(Database& database);

/// Which version of the program laid a database's tables out; older also when there are none.
enum class TablesVersion { older, ours, newer };
int readTablesVersion(Database& database, TablesVersion& version);

/// The result code of a transaction that finds tables of a newer version. SQLite itself does not
/// answer it: its statements are prepared anew when tables have changed.
constexpr int newerTables = SQLITE_SCHEMA;

/// An entry with what it is kept under.
struct StoredEntry {
  std::string digest = {};
  RatingsRecord record = {};
  bool hasNames = false;  ///< what it belongs to is known
  bool operator==(const StoredEntry&) const = default;
};

/// Reads and writes entries by their digest. Must not outlive its database.
class Entries {
 public:
  int prepare(Database& database);

  /// The marks under a digest; the record stays as it is when there are none.
  int readMarks(const std::string& digest, RatingsRecord& record);

  /// Adds the tracks with one of these titles that are as long, within a second.
  int readTracksTitled(std::span<const std::string, 3> titles, std::int64_t length,
                       std::vector<TrackIdentity>& found);
  /// Adds what an entry is called, if there is such an entry.
  int readNames(const std::string& digest, std::vector<TrackIdentity>& found);

  // Within a transaction, those that write.

  /// Sets the marks that the record has, with their dates; a mark that it lacks stays.
  int set(const std::string& digest, const RatingsRecord& record);

  /// Takes over the marks that are lacking here and those that were set later.
  int merge(const std::string& digest, const RatingsRecord& offered, MergeCounts& counts);
  int mergeMarks(const std::string& digest, const RatingsRecord& offered, MergeCounts& counts);

  /// Keeps what an entry is called, unless that is known.
  int addNames(const std::string& digest, const RatingsRecord& record);

  /// Has an entry go by another digest and the names of a record; of two marks the one that was
  /// set later stays.
  int move(const std::string& from, const std::string& to, RatingsRecord record);

  int remove(const std::string& digest);

  /// Takes over all entries of another database. What could be read is taken when it fails.
  int mergeAll(Database& other, MergeCounts& counts);

  int removeAll();

  /// Hands out every entry in a stable order, those without names at the end, until `visit` answers
  /// false.
  int forEach(const std::function<bool(const StoredEntry&)>& visit);
  /// Stays none when there is no such entry.
  int find(const std::string& digest, std::optional<StoredEntry>& entry);

 private:
  int writeMarks(const std::string& digest, const RatingsRecord& record);
  int writeNames(Statement& statement, const std::string& digest, const RatingsRecord& record);

  sqlite3* database_ = nullptr;
  Statement readingMarks_;
  Statement writingMarks_;
  Statement writingNames_;
  Statement addingNames_;
  Statement finding_;
  Statement removingMarks_;
  Statement removingNames_;
};

/// Entries that are no store's: of an imported file, of a copy to export, of a damaged file. They
/// lie in a temporary database, so that the memory they take has a limit.
struct EntryCollection {
  Database database;
  Entries entries;

  int makeEmpty(std::int64_t memory = 256);  ///< MiB at most; what goes beyond lies on the disk
  /// Copies a database as it is at one moment; holds it only for as long.
  int copyFrom(Database& other);
  /// SQLITE_OK when every page and row is sound, else SQLITE_CORRUPT or why it cannot be told.
  int check();
  /// Takes an entry over by the rule of merges; one that cannot be recognised again is passed over.
  int add(const RatingsRecord& record, MergeCounts& counts);
};

}  // namespace desktop

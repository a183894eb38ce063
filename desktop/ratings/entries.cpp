#include "desktop/ratings/entries.h"

#include <algorithm>
#include <array>

#include "desktop/ratings/library_notes.h"

namespace desktop {

namespace {

// Marks lie apart from the names they belong to, and under a digest of the key, so that reading
// them touches few pages however many there are. The names are for people and for exports, from
// which keys are made again.
constexpr std::array schemaSteps = {
    "CREATE TABLE marks ("
    "  digest BLOB PRIMARY KEY NOT NULL,"
    "  rating INTEGER,"          // 0 to 100
    "  rating_changed INTEGER,"  // seconds since 1970, UTC
    "  loved INTEGER,"           // 0 or 1
    "  loved_changed INTEGER"
    ") WITHOUT ROWID;"
    "CREATE TABLE names ("
    "  digest BLOB PRIMARY KEY NOT NULL,"
    "  kind INTEGER NOT NULL,"  // 0 track, 1 album
    "  address TEXT NOT NULL,"
    "  artist TEXT NOT NULL,"
    "  album TEXT NOT NULL,"
    "  album_artist TEXT NOT NULL,"
    "  title TEXT NOT NULL,"
    "  length INTEGER NOT NULL"  // whole seconds, 0 when unknown
    ") WITHOUT ROWID",
    LibraryNotes::table,
    // For tracks whose files have moved.
    "CREATE INDEX tracks_by_title ON names (title, length) WHERE kind = 0"};

constexpr const char* readMarksOfDigest =
    "SELECT rating, rating_changed, loved, loved_changed FROM marks WHERE digest = ?1";

constexpr const char* writeGivenMarks =
    "INSERT INTO marks (digest, rating, rating_changed, loved, loved_changed)"
    " VALUES (?1, ?2, ?3, ?4, ?5)"
    " ON CONFLICT (digest) DO UPDATE SET"
    "  rating = coalesce(excluded.rating, rating),"
    "  rating_changed = coalesce(excluded.rating_changed, rating_changed),"
    "  loved = coalesce(excluded.loved, loved),"
    "  loved_changed = coalesce(excluded.loved_changed, loved_changed)";

// Names that are the same already are not written, which spares most clicks a page.
constexpr const char* writeChangedNames =
    "INSERT INTO names (digest, kind, address, artist, album, album_artist, title, length)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"
    " ON CONFLICT (digest) DO UPDATE SET kind = excluded.kind, address = excluded.address,"
    "  artist = excluded.artist, album = excluded.album, album_artist = excluded.album_artist,"
    "  title = excluded.title, length = excluded.length"
    " WHERE (kind, address, artist, album, album_artist, title, length) IS NOT"
    "  (excluded.kind, excluded.address, excluded.artist, excluded.album, excluded.album_artist,"
    "   excluded.title, excluded.length)";

constexpr const char* addUnknownNames =
    "INSERT OR IGNORE INTO names"
    " (digest, kind, address, artist, album, album_artist, title, length)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)";

constexpr const char* readTitled =
    "SELECT kind, address, artist, album, album_artist, title, length FROM names"
    " WHERE kind = 0 AND title IN (?1, ?2, ?3) AND length BETWEEN ?4 - 1 AND ?4 + 1";

constexpr const char* readNamesOfDigest =
    "SELECT kind, address, artist, album, album_artist, title, length FROM names WHERE digest = ?1";

constexpr const char* readAll =
    "SELECT kind, address, artist, album, album_artist, title, length,"
    "       rating, rating_changed, loved, loved_changed, marks.digest"
    " FROM marks LEFT JOIN names USING (digest)";
constexpr const char* stableOrder =
    " ORDER BY kind IS NULL, kind, artist, album_artist, album, title, address, length, digest";
constexpr const char* ofDigest = " WHERE marks.digest = ?1";

int limitedRating(std::int64_t rating) {
  return static_cast<int>(std::clamp<std::int64_t>(rating, 0, 100));
}

/// The marks, and when each was set, in four columns from one on.
void readMarksFromRow(const Statement& row, int column, RatingsRecord& record) {
  if (const auto rating = row.integer(column)) record.marks.rating = limitedRating(*rating);
  record.ratingChanged = row.integer(column + 1).value_or(0);
  if (const auto loved = row.integer(column + 2)) record.marks.loved = *loved != 0;
  record.lovedChanged = row.integer(column + 3).value_or(0);
}

TrackIdentity identityFromRow(const Statement& row) {
  return {.address = row.text(1),
          .artist = row.text(2),
          .album = row.text(3),
          .albumArtist = row.text(4),
          .title = row.text(5),
          .length = static_cast<double>(row.integer(6).value_or(0))};
}

RatingsRecord recordFromRow(const Statement& row) {
  RatingsRecord record;
  record.kind = row.integer(0) == 1 ? RatingsRecord::Kind::album : RatingsRecord::Kind::track;
  record.identity = identityFromRow(row);
  readMarksFromRow(row, 7, record);
  return record;
}

StoredEntry entryFromRow(const Statement& row) {
  return {.digest = row.bytes(11),
          .record = recordFromRow(row),
          .hasNames = row.integer(0).has_value()};
}

/// The marks of an entry that are to be taken over from it: those that are lacking, and those that
/// were set later.
Marks news(const RatingsRecord& offered, const RatingsRecord& stored) {
  Marks result = offered.marks;
  if (stored.marks.rating && offered.ratingChanged <= stored.ratingChanged) result.rating.reset();
  if (stored.marks.loved && offered.lovedChanged <= stored.lovedChanged) result.loved.reset();
  return result;
}

int resultOfWriting(Statement& statement) {
  const int result = statement.step();
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

}  // namespace

int makeEntryTables(Database& database) { return migrate(database, schemaSteps); }

int readTablesVersion(Database& database, TablesVersion& version) {
  std::int64_t number = 0;
  const int result = database.readInteger("PRAGMA user_version", number);
  constexpr auto ours = static_cast<std::int64_t>(schemaSteps.size());
  version = number == ours  ? TablesVersion::ours
            : number > ours ? TablesVersion::newer
                            : TablesVersion::older;
  return result;
}

int Entries::prepare(Database& database) {
  database_ = database.handle();
  int result = readingMarks_.prepare(database_, readMarksOfDigest);
  if (result == SQLITE_OK) result = writingMarks_.prepare(database_, writeGivenMarks);
  if (result == SQLITE_OK) result = writingNames_.prepare(database_, writeChangedNames);
  if (result == SQLITE_OK) result = addingNames_.prepare(database_, addUnknownNames);
  return result;
}

int Entries::readMarks(const std::string& digest, RatingsRecord& record) {
  const StatementRun run(readingMarks_);
  readingMarks_.bindBytes(1, digest);
  const int result = readingMarks_.step();
  if (result == SQLITE_ROW) readMarksFromRow(readingMarks_, 0, record);
  return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
}

int Entries::set(const std::string& digest, const RatingsRecord& record) {
  const int result = writeMarks(digest, record);
  return result == SQLITE_OK ? writeNames(writingNames_, digest, record) : result;
}

int Entries::merge(const std::string& digest, const RatingsRecord& offered, MergeCounts& counts) {
  const std::int64_t unchanged = counts.unchanged;
  const int result = mergeMarks(digest, offered, counts);
  if (result != SQLITE_OK) return result;
  return writeNames(counts.unchanged == unchanged ? writingNames_ : addingNames_, digest, offered);
}

int Entries::mergeMarks(const std::string& digest, const RatingsRecord& offered,
                        MergeCounts& counts) {
  RatingsRecord stored;
  if (const int result = readMarks(digest, stored); result != SQLITE_OK) return result;
  RatingsRecord taken = offered;
  taken.marks = news(offered, stored);
  const auto& [rating, loved] = taken.marks;
  const bool differs = (rating && limitedRating(*rating) != stored.marks.rating) ||
                       (loved && loved != stored.marks.loved);
  std::int64_t& count = stored.marks == Marks{} ? counts.added : counts.changed;
  ++(differs ? count : counts.unchanged);
  return taken.marks == Marks{} ? SQLITE_OK : writeMarks(digest, taken);
}

int Entries::addNames(const std::string& digest, const RatingsRecord& record) {
  return writeNames(addingNames_, digest, record);
}

int Entries::readTracksTitled(std::span<const std::string, 3> titles, std::int64_t length,
                              std::vector<TrackIdentity>& found) {
  Statement titled;
  int result = titled.prepare(database_, readTitled);
  if (result != SQLITE_OK) return result;
  for (int number = 0; number < 3; ++number) {
    titled.bind(number + 1, titles[static_cast<std::size_t>(number)]);
  }
  titled.bind(4, length);
  while ((result = titled.step()) == SQLITE_ROW) found.push_back(identityFromRow(titled));
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

int Entries::readNames(const std::string& digest, std::vector<TrackIdentity>& found) {
  Statement names;
  int result = names.prepare(database_, readNamesOfDigest);
  if (result != SQLITE_OK) return result;
  names.bindBytes(1, digest);
  result = names.step();
  if (result == SQLITE_ROW) found.push_back(identityFromRow(names));
  return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
}

int Entries::move(const std::string& from, const std::string& to, RatingsRecord record) {
  MergeCounts counts;
  int result = readMarks(from, record);
  if (result == SQLITE_OK) result = mergeMarks(to, record, counts);
  if (result == SQLITE_OK) result = writeNames(writingNames_, to, record);
  return result == SQLITE_OK ? remove(from) : result;
}

int Entries::remove(const std::string& digest) {
  for (const auto& [removing, text] :
       {std::pair(&removingMarks_, "DELETE FROM marks WHERE digest = ?1"),
        {&removingNames_, "DELETE FROM names WHERE digest = ?1"}}) {
    int result = *removing ? SQLITE_OK : removing->prepare(database_, text);
    if (result != SQLITE_OK) return result;
    const StatementRun run(*removing);
    removing->bindBytes(1, digest);
    result = resultOfWriting(*removing);
    if (result != SQLITE_OK) return result;
  }
  return SQLITE_OK;
}

int Entries::mergeAll(Database& other, MergeCounts& counts) {
  Statement all;
  int result = all.prepare(other.handle(), readAll);
  if (result != SQLITE_OK) return result;
  while ((result = all.step()) == SQLITE_ROW) {
    const auto [digest, record, hasNames] = entryFromRow(all);
    const int merged =
        hasNames ? merge(digest, record, counts) : mergeMarks(digest, record, counts);
    if (merged != SQLITE_OK) return merged;
  }
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

int Entries::removeAll() {
  return sqlite3_exec(database_, "DELETE FROM marks; DELETE FROM names", nullptr, nullptr, nullptr);
}

int Entries::forEach(const std::function<bool(const StoredEntry&)>& visit) {
  Statement all;
  int result = all.prepare(database_, (std::string(readAll) + stableOrder).c_str());
  if (result != SQLITE_OK) return result;
  while ((result = all.step()) == SQLITE_ROW) {
    if (!visit(entryFromRow(all))) return SQLITE_ABORT;
  }
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

int Entries::find(const std::string& digest, std::optional<StoredEntry>& entry) {
  // What clicks do not need is prepared when it is.
  int result = SQLITE_OK;
  if (!finding_) result = finding_.prepare(database_, (std::string(readAll) + ofDigest).c_str());
  if (result != SQLITE_OK) return result;
  const StatementRun run(finding_);
  finding_.bindBytes(1, digest);
  result = finding_.step();
  if (result == SQLITE_ROW) entry = entryFromRow(finding_);
  return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
}

int Entries::writeMarks(const std::string& digest, const RatingsRecord& record) {
  const StatementRun run(writingMarks_);
  const Marks& marks = record.marks;
  writingMarks_.bindBytes(1, digest);
  if (marks.rating) {
    writingMarks_.bind(2, limitedRating(*marks.rating));
    writingMarks_.bind(3, record.ratingChanged);
  }
  if (marks.loved) {
    writingMarks_.bind(4, *marks.loved ? 1 : 0);
    writingMarks_.bind(5, record.lovedChanged);
  }
  return resultOfWriting(writingMarks_);
}

int Entries::writeNames(Statement& statement, const std::string& digest,
                        const RatingsRecord& record) {
  const StatementRun run(statement);
  const TrackIdentity identity = storedIdentity(record.kind, record.identity);
  statement.bindBytes(1, digest);
  statement.bind(2, record.kind == RatingsRecord::Kind::album ? 1 : 0);
  statement.bind(3, identity.address);
  statement.bind(4, identity.artist);
  statement.bind(5, identity.album);
  statement.bind(6, identity.albumArtist);
  statement.bind(7, identity.title);
  statement.bind(8, static_cast<std::int64_t>(identity.length));
  return resultOfWriting(statement);
}

int EntryCollection::makeEmpty(std::int64_t memory) {
  int result = database.openTemporary();
  // Entries come in no order, so that every page is wanted again and again: by default there is
  // room for those of a million entries, taken as they come.
  const std::string room = "PRAGMA cache_size = -" + std::to_string(memory * 1024);
  if (result == SQLITE_OK) result = database.execute(room.c_str());
  if (result == SQLITE_OK) result = makeEntryTables(database);
  if (result == SQLITE_OK) result = entries.prepare(database);
  // Never committed: it lasts no longer than this object.
  return result == SQLITE_OK ? database.execute("BEGIN") : result;
}

int EntryCollection::copyFrom(Database& other) {
  int result = database.openTemporary();
  if (result == SQLITE_OK) result = database.copyFrom(other);
  return result == SQLITE_OK ? entries.prepare(database) : result;
}

int EntryCollection::check() {
  Statement check;
  int result = check.prepare(database.handle(), "PRAGMA quick_check(1)");
  if (result == SQLITE_OK) result = check.step();
  if (result != SQLITE_ROW) return result == SQLITE_DONE ? SQLITE_CORRUPT : result;
  return check.text(0) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

int EntryCollection::add(const RatingsRecord& record, MergeCounts& counts) {
  if (const auto digest = digestOf(record)) return entries.merge(*digest, record, counts);
  ++counts.unchanged;
  return SQLITE_OK;
}

}  // namespace desktop

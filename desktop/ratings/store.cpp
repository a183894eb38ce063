#include "desktop/ratings/store.h"

#include <QtCore/QByteArray>
#include <QtCore/QCryptographicHash>
#include <algorithm>
#include <ctime>

#include "desktop/files/user_folders.h"
#include "platform/foundation/text.h"

namespace desktop {

namespace {

using Kind = StoreProblem::Kind;

constexpr const char* readMarks =
    "SELECT rating, rating_changed, loved, loved_changed FROM marks WHERE digest = ?1";

// A mark that is not given stays; an entry that has all given marks already is not written.
constexpr const char* writeMarks =
    "INSERT INTO marks (digest, rating, rating_changed, loved, loved_changed)"
    " VALUES (?1, ?2, ?3, ?4, ?5)"
    " ON CONFLICT (digest) DO UPDATE SET"
    "  rating = coalesce(excluded.rating, rating),"
    "  rating_changed = coalesce(excluded.rating_changed, rating_changed),"
    "  loved = coalesce(excluded.loved, loved),"
    "  loved_changed = coalesce(excluded.loved_changed, loved_changed)"
    " WHERE rating IS NOT coalesce(excluded.rating, rating)"
    "    OR loved IS NOT coalesce(excluded.loved, loved)";

constexpr const char* writeNames =
    "INSERT OR REPLACE INTO names"
    " (digest, kind, address, artist, album, album_artist, title, length)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)";

constexpr const char* readAll =
    "SELECT kind, address, artist, album, album_artist, title, length,"
    "       rating, rating_changed, loved, loved_changed"
    " FROM names JOIN marks USING (digest)"
    " ORDER BY kind, artist, album_artist, album, title, address, length, digest";

int limitedRating(std::int64_t rating) {
  return static_cast<int>(std::clamp<std::int64_t>(rating, 0, 100));
}

std::optional<std::string> keyOf(const RatingsRecord& record) {
  return record.kind == RatingsRecord::Kind::track ? trackKey(record.identity)
                                                   : albumKey(record.identity);
}

/// Sixteen bytes that stand for a key: among a million of them, two are the same once in 10^26.
std::string digestOf(const std::string& key) {
  const QByteArrayView bytes(key.data(), static_cast<qsizetype>(key.size()));
  return QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_160).first(16).toStdString();
}

/// What a player tells, as entries keep it: well-formed texts, whole seconds, and only what the
/// key can be made from again.
TrackIdentity storedIdentity(RatingsRecord::Kind kind, const TrackIdentity& told) {
  using platform::repairedUTF8;
  if (kind == RatingsRecord::Kind::album) {
    return {.album = repairedUTF8(told.album),
            .albumArtist = repairedUTF8(told.albumArtist.empty() ? told.artist : told.albumArtist)};
  }
  return {.address = repairedUTF8(lastingAddress(told).value_or("")),
          .artist = repairedUTF8(told.artist),
          .album = repairedUTF8(told.album),
          .albumArtist = repairedUTF8(told.albumArtist),
          .title = repairedUTF8(told.title),
          .length = static_cast<double>(wholeSeconds(told.length))};
}

/// The marks, and when each was set, in four columns from one on.
void readMarksFromRow(const Statement& row, int column, RatingsRecord& record) {
  if (const auto rating = row.integer(column)) record.marks.rating = limitedRating(*rating);
  record.ratingChanged = row.integer(column + 1).value_or(0);
  if (const auto loved = row.integer(column + 2)) record.marks.loved = *loved != 0;
  record.lovedChanged = row.integer(column + 3).value_or(0);
}

RatingsRecord recordFromRow(const Statement& row) {
  RatingsRecord record;
  record.kind = row.integer(0) == 1 ? RatingsRecord::Kind::album : RatingsRecord::Kind::track;
  record.identity = {.address = row.text(1),
                     .artist = row.text(2),
                     .album = row.text(3),
                     .albumArtist = row.text(4),
                     .title = row.text(5),
                     .length = static_cast<double>(row.integer(6).value_or(0))};
  readMarksFromRow(row, 7, record);
  return record;
}

/// The marks of an entry that the store should take over from it: those that it lacks, and those
/// that differ and were set later.
RatingsRecord news(const RatingsRecord& offered, const RatingsRecord& stored) {
  RatingsRecord result = offered;
  if (stored.marks.rating && (offered.marks.rating == stored.marks.rating ||
                              offered.ratingChanged <= stored.ratingChanged)) {
    result.marks.rating.reset();
  }
  if (stored.marks.loved &&
      (offered.marks.loved == stored.marks.loved || offered.lovedChanged <= stored.lovedChanged)) {
    result.marks.loved.reset();
  }
  return result;
}

}  // namespace

/// The open file with its statements, which must be gone before it is closed. Operations answer
/// SQLITE_OK, or why they failed.
struct RatingsStore::Connection {
  Database database;
  Statement readingMarks;
  Statement writingMarks;
  Statement writingNames;
  bool isUnwritable = false;

  int prepare() {
    sqlite3* handle = database.handle();
    int result = readingMarks.prepare(handle, readMarks);
    if (result == SQLITE_OK) result = writingMarks.prepare(handle, writeMarks);
    if (result == SQLITE_OK) result = writingNames.prepare(handle, writeNames);
    return result;
  }

  /// The marks of a key; the record stays as it is when it has none.
  int read(const std::string& key, RatingsRecord& record) {
    const std::string digest = digestOf(key);
    const StatementRun run(readingMarks);
    readingMarks.bindBytes(1, digest);
    const int result = readingMarks.step();
    if (result == SQLITE_ROW) readMarksFromRow(readingMarks, 0, record);
    return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
  }

  /// Within a transaction.
  int write(const std::string& key, const RatingsRecord& record) {
    const std::string digest = digestOf(key);
    const int result = writeMarksOf(digest, record);
    // What was not changed was written with its names before.
    if (result != SQLITE_OK || sqlite3_changes(database.handle()) == 0) return result;
    return writeNamesOf(digest, record);
  }

  int writeMarksOf(const std::string& digest, const RatingsRecord& record) {
    const StatementRun run(writingMarks);
    const Marks& marks = record.marks;
    writingMarks.bindBytes(1, digest);
    if (marks.rating) {
      writingMarks.bind(2, limitedRating(*marks.rating));
      writingMarks.bind(3, record.ratingChanged);
    }
    if (marks.loved) {
      writingMarks.bind(4, *marks.loved ? 1 : 0);
      writingMarks.bind(5, record.lovedChanged);
    }
    return resultOfWriting(writingMarks);
  }

  int writeNamesOf(const std::string& digest, const RatingsRecord& record) {
    const StatementRun run(writingNames);
    const TrackIdentity identity = storedIdentity(record.kind, record.identity);
    writingNames.bindBytes(1, digest);
    writingNames.bind(2, record.kind == RatingsRecord::Kind::album ? 1 : 0);
    writingNames.bind(3, identity.address);
    writingNames.bind(4, identity.artist);
    writingNames.bind(5, identity.album);
    writingNames.bind(6, identity.albumArtist);
    writingNames.bind(7, identity.title);
    writingNames.bind(8, static_cast<std::int64_t>(identity.length));
    return resultOfWriting(writingNames);
  }

  static int resultOfWriting(Statement& statement) {
    const int result = statement.step();
    return result == SQLITE_DONE ? SQLITE_OK : result;
  }

  /// Within a transaction.
  int merge(const std::string& key, const RatingsRecord& offered, MergeCounts& counts) {
    RatingsRecord stored;
    if (const int result = read(key, stored); result != SQLITE_OK) return result;
    const RatingsRecord taken = news(offered, stored);
    if (taken.marks == Marks{}) {
      ++counts.unchanged;
      return SQLITE_OK;
    }
    ++(stored.marks == Marks{} ? counts.added : counts.changed);
    return write(key, taken);
  }
};

RatingsStore::RatingsStore(std::filesystem::path file, std::ostream& messages)
    : file_(std::move(file)), messages_(messages) {}

RatingsStore::~RatingsStore() = default;

std::filesystem::path RatingsStore::defaultFile() {
  const std::filesystem::path folder = userDataFolder();
  return folder.empty() ? folder : folder / "virelune-widget" / "ratings.sqlite";
}

Marks RatingsStore::trackMarks(const TrackIdentity& track) { return marks(trackKey(track)); }

Marks RatingsStore::albumMarks(const TrackIdentity& track) { return marks(albumKey(track)); }

bool RatingsStore::setTrackRating(const TrackIdentity& track, int rating) {
  return set({RatingsRecord::Kind::track, track, {.rating = rating}});
}

bool RatingsStore::setTrackLoved(const TrackIdentity& track, bool loved) {
  return set({RatingsRecord::Kind::track, track, {.loved = loved}});
}

bool RatingsStore::setAlbumRating(const TrackIdentity& track, int rating) {
  return set({RatingsRecord::Kind::album, track, {.rating = rating}});
}

bool RatingsStore::setAlbumLoved(const TrackIdentity& track, bool loved) {
  return set({RatingsRecord::Kind::album, track, {.loved = loved}});
}

bool RatingsStore::forEach(const std::function<void(const RatingsRecord&)>& visit) {
  return perform(Access::read, [&](Connection& connection) {
    Statement all;
    int result = all.prepare(connection.database.handle(), readAll);
    if (result != SQLITE_OK) return result;
    while ((result = all.step()) == SQLITE_ROW) visit(recordFromRow(all));
    return result == SQLITE_DONE ? SQLITE_OK : result;
  });
}

std::optional<RatingsStore::MergeCounts> RatingsStore::merge(
    std::span<const RatingsRecord> records) {
  MergeCounts counts;
  const bool merged = performInTransaction([&](Connection& connection) {
    counts = {};
    for (const RatingsRecord& record : records) {
      const auto key = keyOf(record);
      if (!key) {
        ++counts.unchanged;
        continue;
      }
      const int result = connection.merge(*key, record, counts);
      if (result != SQLITE_OK) return result;
    }
    return SQLITE_OK;
  });
  return merged ? std::optional(counts) : std::nullopt;
}

Marks RatingsStore::marks(const std::optional<std::string>& key) {
  RatingsRecord record;
  if (key) {
    perform(Access::read, [&](Connection& connection) { return connection.read(*key, record); });
  }
  return record.marks;
}

bool RatingsStore::set(const RatingsRecord& record) {
  const auto key = keyOf(record);
  if (!key) return false;
  RatingsRecord dated = record;
  dated.ratingChanged = dated.lovedChanged = static_cast<std::int64_t>(std::time(nullptr));
  return performInTransaction(
      [&](Connection& connection) { return connection.write(*key, dated); });
}

bool RatingsStore::performInTransaction(const Work& work) {
  return perform(Access::write, [&](Connection& connection) {
    Transaction transaction(connection.database);
    if (transaction.begun() != SQLITE_OK) return transaction.begun();
    const int result = work(connection);
    return result == SQLITE_OK ? transaction.commit() : result;
  });
}

bool RatingsStore::perform(Access access, const Work& work) {
  // A second trial, with a new file, when the first one finds the file damaged.
  for (int trial = 0; trial < 2; ++trial) {
    auto problem = connect(access);
    const bool connected = !problem;
    if (connected) problem = problemWithResult(connection_->database, work(*connection_));
    if (!problem) {
      if (connection_->isUnwritable) connection_.reset();
      if (access == Access::write) told_.clear();
      return true;
    }
    if (problem->kind == Kind::damaged && setAside(*problem)) continue;
    // The cause may pass; the next request begins afresh.
    if (!connected || problem->kind != Kind::busy) connection_.reset();
    if (problem->kind == Kind::absent) return true;
    tell(problem->kind,
         "cannot use the ratings store: " + problem->text + " (" + file_.native() + ")");
    return false;
  }
  return false;
}

std::optional<StoreProblem> RatingsStore::connect(Access access) {
  if (connection_ && !connection_->database.hasMoved()) return std::nullopt;
  connection_ = std::make_unique<Connection>();
  auto problem = openRatingsFile(file_, access == Access::write, patience_, connection_->database);
  if (problem && problem->kind == Kind::failed && access == Access::read) {
    auto unwritable = std::make_unique<Connection>();
    unwritable->isUnwritable = true;
    if (!openUnwritableRatingsFile(file_, unwritable->database)) {
      connection_ = std::move(unwritable);
      problem.reset();
    }
  }
  if (problem) return problem;
  const int result = connection_->prepare();
  problem = problemWithResult(connection_->database, result);
  // Statements that make no sense to it: tables of ours are missing.
  if ((result & 0xFF) == SQLITE_ERROR) problem->kind = Kind::damaged;
  return problem;
}

bool RatingsStore::setAside(const StoreProblem& problem) {
  Database damaged = std::move(connection_->database);
  connection_.reset();
  const auto name = setDamagedFileAside(file_, patience_, std::move(damaged));
  if (!name) {
    tell(Kind::damaged, "cannot rename the damaged ratings store: " + name.problem().text + " (" +
                            file_.native() + ")");
    return false;
  }
  if (!name->empty()) {
    tell(Kind::damaged, "the ratings store was damaged (" + problem.text + "); it is kept as " +
                            name->native() + " and a new one begins");
  }
  return true;
}

void RatingsStore::tell(Kind kind, const std::string& message) {
  if (!told_.insert(kind).second) return;
  messages_ << "virelune-widget: " << message << std::endl;
}

}  // namespace desktop
